#include "driver/ostrel.h"

int main(int argc, char** argv) {
  return ostrel_main(argc, argv);
}
