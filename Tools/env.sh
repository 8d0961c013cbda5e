# Sourced by the commands at the root and the tools: where Windows programs run here, and how.
# shellcheck shell=bash
root=$(cd "${BASH_SOURCE[0]%/*}/.." && pwd)
export WINEARCH=win32
export WINEPREFIX="${AUTORUN_WINEPREFIX:-$root/build/wine}"
# Is there once ./setup has made the prefix; another number has all of them made again.
# shellcheck disable=SC2034 # ./setup and ./disc read it.
wine_mark=$WINEPREFIX/.ready-3
export WINEDEBUG="${WINEDEBUG:--all}"
# Without its debugger Wine ends a crashed program at once instead of asking in a dialog; menu
# entries for the programs under test are not wanted.
export WINEDLLOVERRIDES="winedbg.exe,winemenubuilder.exe=d"
# The locale decides on date and time pictures, and its encoding on the file names that Wine can see.
export LC_ALL=C.UTF-8
