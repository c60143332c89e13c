#!/usr/bin/env bash
# Each custom text-format property of the library (QTextFormat::UserProperty + N) has a number of
# its own: two properties that share one read and overwrite each other's values. Prints every
# number given twice with the places that give it, and fails when there is one.
set -u
root="$(cd "$(dirname "$0")/.." && pwd)"
src="$root/src/kvrichtextbox"
status=0
for n in $(grep -rhoE "UserProperty \+ [0-9]+" "$src" | sed 's/.*+ //' | sort -n | uniq -d); do
  echo "QTextFormat::UserProperty + $n is given to more than one property:"
  grep -rnE "UserProperty \+ $n\b" "$src"
  status=1
done
[ $status -eq 0 ] && echo "every user property has a number of its own"
exit $status
