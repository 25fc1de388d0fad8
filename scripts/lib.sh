# Read by the other scripts; not a program of its own. Needs bash and the tools of a minimal Debian system only.

root=$(cd -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }
die() {
  say "Sorry! $*"
  exit 1
}

# quietly WHAT COMMAND...: runs the command and shows its output, on standard error, only if it fails.
quietly() {
  local what=$1 log status=0
  shift
  log=$(mktemp)
  "$@" >"$log" 2>&1 </dev/null || status=$?
  if ((status != 0)); then
    cat -- "$log" >&2
    say "Sorry! $what failed; its output stands above."
  fi
  rm -f -- "$log"
  return "$status"
}

# packages_of SECTION...: the packages of these sections of packages.txt, one a line.
packages_of() {
  local wanted=" $* " section package _
  while read -r section package _; do
    [[ $section != '#'* && -n $package && $wanted == *" $section "* ]] && printf '%s\n' "$package"
  done <"$root/scripts/packages.txt"
  return 0
}

is_installed() {
  [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
}

as_root() {
  if ((EUID == 0)); then
    env DEBIAN_FRONTEND=noninteractive "$@"
  else
    sudo env DEBIAN_FRONTEND=noninteractive "$@"
  fi
}

apt_install() {
  # The lists of an earlier update may do, so a failure here does not end it.
  as_root apt-get -q -o DPkg::Lock::Timeout=300 update || say "apt-get update failed"
  as_root apt-get -q -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "$@"
}

# install_missing SECTION...: installs what is missing of these sections; silent when nothing is. Systems without
# Debian's package manager, and users who set OSTREL_NO_INSTALL, look after the packages themselves.
install_missing() {
  [[ -z ${OSTREL_NO_INSTALL:-} ]] && type -P dpkg-query apt-get >/dev/null || return 0
  local package list missing=()
  list=$(packages_of "$@")
  for package in $list; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]} == 0)) && return 0
  if ((EUID != 0)) && ! type -P sudo >/dev/null; then
    die "These packages are missing, and there is no sudo to install them with: ${missing[*]}
Run as root:  apt-get install --no-install-recommends ${missing[*]}
or set OSTREL_NO_INSTALL=1 if you have them from elsewhere."
  fi
  say "Installing ${missing[*]} ..."
  quietly "Installing ${missing[*]}" apt_install "${missing[@]}" || exit 1
}

configure() {
  # A build directory that was made for a checkout elsewhere is made afresh.
  cmake --preset "$1" || cmake --fresh --preset "$1"
}

configure_and_build() {
  local preset=$1
  cd -- "$root" || return
  mkdir -p build
  # One build at a time: two that run at once would write the same files.
  exec {lock}>"build/.lock-$preset"
  flock "$lock"
  configure "$preset" && cmake --build --preset "$preset"
}

# build PRESET: configures and builds into build/PRESET.
build() {
  [[ -e $root/build/$1/build.ninja ]] || say "Building Ostrel ($1) ..."
  (quietly "Building Ostrel ($1)" configure_and_build "$1")
}

# test_threads CASES CTEST_OPTION...: runs what build/tsan holds: CASES comparisons with the reference of build/dev, and
# the tests of the threads. A report of ThreadSanitizer ends a program with an exit status of its own.
test_threads() {
  local cases=$1 tests=$root/build/dev/tests run=()
  shift
  # ThreadSanitizer needs its addresses free, which they may not be where the system puts things at random places.
  ! setarch -R true 2>/dev/null || run=(setarch -R)
  "${run[@]}" "$tests/differential/differential" "$root/build/tsan/src/driver/ostrel" \
    "$tests/reference/ostrel-reference" --extra "--threads 3" --first-seed 2001 --cases "$cases" --jobs "$(nproc)" \
    --keep "$root/build/tsan/differential-failures" &&
    "${run[@]}" ctest --test-dir "$root/build/tsan" -R '^threads[.]' --output-on-failure --no-tests=error \
      --timeout 600 -j "$(nproc)" "$@" 2>&1 | tee "$root/build/tsan/ctest.log"
}
