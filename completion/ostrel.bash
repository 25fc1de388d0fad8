# Completion of ostrel's command line in bash. A new option goes into the list `options`, and, if a value follows it, into
# the case that says what that value is.
# shellcheck shell=bash

_ostrel() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} values='' i
  local options='--bed -D --dontRemoveMostlyOverlapping -f --flanking --firstSeq -g --indelScore --gff3 -h --help --jsonl
    --lastSeq -l --minLength --minLength_a --minLength_b -m --mismatchScore -M --searchMode --maskX -N --succN
    --NsAsMissense --NPerfectionMode --outputFormat -P --minPerfection --printRepeatSeqMode --progress -r --recursion
    --reportUnit -s --minScore --minScore_a --minScore_b --threads --tsv -u --minUnitLen -U --maxUnitLen -v --version
    --ignore_rest'

  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    if [[ ${COMP_WORDS[i]} == -- || ${COMP_WORDS[i]} == --ignore_rest ]]; then
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
    fi
  done
  case $before in
    --bed | --gff3 | --jsonl | --tsv) ;; # a file
    -M | --searchMode) values='exact extendExact imperfect' ;;
    --outputFormat | --printRepeatSeqMode | --reportUnit | --NPerfectionMode) values='0 1 2' ;;
    -u | --minUnitLen) values='1 2' ;;
    -f | --flanking | --firstSeq | -g | --indelScore | --lastSeq | -l | --minLength | --minLength_a | --minLength_b | \
      -m | --mismatchScore | -N | --succN | -P | --minPerfection | -r | --recursion | -s | --minScore | --minScore_a | \
      --minScore_b | --threads | -U | --maxUnitLen)
      return # a number that only the user knows
      ;;
    *)
      [[ $word == -* ]] && values=$options
      ;;
  esac
  if [[ -n $values ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$word")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -o filenames -F _ostrel ostrel
