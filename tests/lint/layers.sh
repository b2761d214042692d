#!/usr/bin/env bash
# The layering check refuses an include that climbs out of its room: a drawn-chrome file that includes a
# bridge header, a tab that includes the window. The same tree without the stray include passes.
set -euo pipefail
source_dir=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$source_dir/src" "$work/src"
mkdir -p "$work/bench" "$work/tests/core"

VELDER_LINT_ROOT=$work "$source_dir/scripts/lint" --layers

check_refused() {
  local file=$1 include=$2 reason=$3
  printf '#include "%s"\n' "$include" >"$work/$file"
  if VELDER_LINT_ROOT=$work "$source_dir/scripts/lint" --layers 2>"$work/out"; then
    echo "FAIL: $file including $include passed the check" >&2
    exit 1
  fi
  grep -q "$reason" "$work/out" || { echo "FAIL: no reason given for $file" >&2; cat "$work/out" >&2; exit 1; }
  grep -q "$file" "$work/out" || { echo "FAIL: $file not named" >&2; exit 1; }
  rm "$work/$file"
}

check_refused src/shell/chrome/Stray.cpp bridge/VLDBrowserView.h "the drawn chrome needs only the core"
check_refused src/shell/overlays/Stray.h shell/window/MainWindow.h "the overlays over the page"
check_refused src/shell/tab/Stray.cpp shell/window/MainWindow.h "a tab knows no window"
check_refused src/core/Stray.cpp gtk/gtk.h "the core is plain C++"
check_refused src/update/Stray.cpp gtk/gtk.h "the updater's backend knows no toolkit"
check_refused src/shell/window/Stray.cpp update/VelderUpdater.h "the shell doesn't know the app"
