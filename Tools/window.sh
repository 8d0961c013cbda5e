# Sourced by what looks at the window of a program that it starts.
# shellcheck shell=bash

# The windows under a program's name, whatever their captions say.
find_windows() {
    xdotool search --onlyvisible --class "^$(basename "$1")\$" 2>/dev/null || true
}

# Whether a window has a size, and one that the screen has room for. What is wrong with it is in
# `problem` then: nobody needs to wait for such a window, nor for one without a size, which Wine shows
# as a single pixel.
# shellcheck disable=SC2034 # Those who call it read it.
has_size() {
    local size cx cy WIDTH=0 HEIGHT=0
    problem=''
    size=$(xdotool getwindowgeometry --shell "$1" 2>/dev/null) || return
    eval "$(grep -E '^(WIDTH|HEIGHT)=[0-9]+$' <<<"$size")"
    read -r cx cy < <(xdotool getdisplaygeometry)
    if [ "$WIDTH" -gt "$cx" ] || [ "$HEIGHT" -gt "$cy" ]; then
        problem="the window is larger than the screen: $WIDTH x $HEIGHT, not $cx x $cy"
        return 1
    fi
    [ "$WIDTH" -le 1 ] || [ "$HEIGHT" -le 1 ] || return 0
    # It might just be on its way to its size.
    [ $((++sizeless)) -lt 20 ] || problem="the window has no size; is the background picture missing?"
    return 1
}
sizeless=0
