#!/usr/bin/env bash
# Keeps the library's layers apart. Prints each offending include and fails when there is one.
#
#   core/      the ground: interfaces, shared types, colours, per-thread state, the core's interface
#   surface/   the Qt editor surface, RTF, and the Qt platform services       (uses core/)
#   areas      documents/ editing/ hyperlinks/ syntax/ spelling/ findreplace/ wordcount/
#              ruler/ printing/ fonts/ help/                                  (use core/ and each other)
#   control/   the KvRTB facade, property table and bag, assembly of the core (uses everything)
#
# A folder includes only from its own layer or below; the areas never include surface/ (they work
# against EditorSurface and PlatformServices). Only surface/ may use Qt's text document classes, and
# only the Qt platform services may show the common dialogs, message boxes and menus.
set -u
root="$(cd "$(dirname "$0")/.." && pwd)"
src="$root/src/kvrichtextbox"
status=0

rank() {
  case "$1" in
    core) echo 0 ;;
    surface) echo 1 ;;
    control) echo 3 ;;
    resources) echo 0 ;;
    *) echo 2 ;;
  esac
}

layers=""
while IFS= read -r line; do
  file="${line%%:*}"
  rel="${file#$src/}"
  from="${rel%%/*}"
  target=$(printf '%s' "$line" | sed -nE 's/.*#include "([a-z]+)\/.*/\1/p')
  [ -z "$target" ] && continue
  [ "$from" = "$target" ] && continue
  [ -d "$src/$target" ] || continue
  if [ "$(rank "$target")" -gt "$(rank "$from")" ]; then
    layers+="$line"$'\n'
  elif [ "$(rank "$from")" -eq 2 ] && [ "$target" = "surface" ]; then
    layers+="$line"$'\n'
  fi
done < <(grep -rnE '#include "[a-z]+/' "$src" --include='*.h' --include='*.cpp')
if [ -n "$layers" ]; then
  echo "A folder includes from a layer above it (or an area from surface/):"
  printf '%s' "$layers"
  status=1
fi

text=$(grep -rnE '#include <(QTextDocument|QTextEdit|QTextCursor|QTextBlock|QTextCharFormat|QTextBlockFormat|QTextFormat|QTextLayout|QTextFrame|QTextTable|QTextList|QTextDocumentFragment|QTextDocumentWriter|QPlainTextEdit|QAbstractTextDocumentLayout)>' \
  "$src" --include='*.h' --include='*.cpp' | grep -v "^$src/surface/")
if [ -n "$text" ]; then
  echo "Only surface/ may use the text document classes:"
  echo "$text"
  status=1
fi

dialogs=$(grep -rnE '#include <(QMessageBox|QFileDialog|QColorDialog|QFontDialog|QPrintDialog|QPrintPreviewDialog|QInputDialog|QMenu)>' \
  "$src" --include='*.h' --include='*.cpp' | grep -v "^$src/surface/qtplatformservices")
if [ -n "$dialogs" ]; then
  echo "Only the Qt platform services may show dialogs and menus:"
  echo "$dialogs"
  status=1
fi

[ $status -eq 0 ] && echo "Layers are kept apart."
exit $status
