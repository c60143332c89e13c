#!/usr/bin/env bash
# Keeps the library's layers apart: only surface/ may use Qt's text document classes, and only
# the Qt platform services may show dialogs and menus. Prints each offending include.
set -u
root="$(cd "$(dirname "$0")/.." && pwd)"
src="$root/src/kvrichtextbox"
status=0

text=$(grep -rnE '#include <(QTextDocument|QTextEdit|QTextCursor|QTextBlock|QTextCharFormat|QTextBlockFormat|QTextFormat|QTextLayout|QTextFrame|QTextTable|QTextList|QTextDocumentFragment|QTextDocumentWriter|QPlainTextEdit|QAbstractTextDocumentLayout)>' \
  "$src" --include='*.h' --include='*.cpp' | grep -v "^$src/surface/")
if [ -n "$text" ]; then
  echo "Only surface/ may use the text document classes:"
  echo "$text"
  status=1
fi

dialogs=$(grep -rnE '#include <(QMessageBox|QFileDialog|QColorDialog|QFontDialog|QPrintDialog|QPrintPreviewDialog|QInputDialog|QMenu)>' \
  "$src" --include='*.h' --include='*.cpp' | grep -v "^$src/control/qtplatformservices")
if [ -n "$dialogs" ]; then
  echo "Only the Qt platform services may show dialogs and menus:"
  echo "$dialogs"
  status=1
fi

[ $status -eq 0 ] && echo "Layers are kept apart."
exit $status
