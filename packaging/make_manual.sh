#!/usr/bin/env bash
# Makes a program's manual page from its own --help with help2man, so that the page and the
# program never disagree. A program with subcommands (a "Subcommands:" list in its help)
# gets a COMMANDS section holding every subcommand's --help as well.
#
#   make_manual.sh PROGRAM VERSION OUTPUT.1 [INCLUDE.h2m]
#
# INCLUDE.h2m holds hand-written sections (NAME, FILES, SEE ALSO ...) in help2man's format.
set -euo pipefail
if (($# < 3)); then
  echo "usage: $0 PROGRAM VERSION OUTPUT.1 [INCLUDE.h2m]" >&2
  exit 2
fi
program="$1"
version="$2"
output="$3"
include="${4:-}"
name="$(basename "$program")"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# Turns one CLI11 help text into roff: the description, the usage line and one tagged
# paragraph per option, positional or subcommand. An entry is a line indented by two
# blanks; deeper indented lines continue the description of the entry above.
help_to_roff() {
  awk '
    function esc(s) {
      gsub(/\\/, "\\e", s)
      gsub(/-/, "\\-", s)
      sub(/^[.\047]/, "\\\\\\&&", s)
      return s
    }
    function flush() {
      if (term != "") {
        print ".TP"
        print "\\fB" esc(term) "\\fR"
        if (text != "") print esc(text)
      }
      term = ""; text = ""
    }
    /^Usage: / {
      flush(); usage = substr($0, 8)
      print ".PP"
      print "\\fBUsage:\\fR " esc(usage)
      next
    }
    /^[^ ].*:$/ { flush(); print ".PP"; print "\\fI" esc($0) "\\fR"; next }
    /^  [^ ]/ {
      flush()
      line = substr($0, 3)
      if (match(line, /  +/)) {
        term = substr(line, 1, RSTART - 1)
        text = substr(line, RSTART + RLENGTH)
      } else {
        term = line
      }
      next
    }
    /^   / {
      sub(/^ +/, "")
      if (term != "") { text = text (text == "" ? "" : " ") $0 } else { print esc($0) }
      next
    }
    /^$/ { flush(); next }
    { flush(); print ".PP"; print esc($0) }
    END { flush() }
  '
}

main_help="$("$program" --help)"
mapfile -t subcommands < <(printf '%s\n' "$main_help" |
  awk '/^Subcommands:$/ { inside = 1; next } /^[^ ]/ { inside = 0 } inside && /^  [^ ]/ { print $1 }')

includes=()
if ((${#subcommands[@]})); then
  {
    echo "[COMMANDS]"
    echo ".nh"
    echo ".ad l"
    for sub in "${subcommands[@]}"; do
      echo ".SS \"$name $sub\""
      "$program" "$sub" --help | help_to_roff
    done
  } >"$work/commands.h2m"
  includes+=(--include "$work/commands.h2m")
fi
[[ -z "$include" ]] || includes+=(--include "$include")

help2man --no-info --version-string="$version" "${includes[@]}" --output="$work/page.1" "$program"
mv "$work/page.1" "$output"
