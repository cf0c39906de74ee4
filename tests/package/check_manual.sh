#!/usr/bin/env bash
# Checks that a manual page documents everything the program's --help offers: every option
# and positional of the program, every subcommand, and every option and positional of each
# subcommand inside that subcommand's own part of the page.
#
#   check_manual.sh PAGE.1[.gz] COMMAND [ARGS...]
#
# COMMAND [ARGS...] runs the program (e.g. `build/apps/vantrel/vantrel` or
# `chroot ROOT vantrel`); the name its usage line gives heads the subcommands' parts.
set -euo pipefail
if (($# < 2)); then
  echo "usage: $0 PAGE.1[.gz] COMMAND [ARGS...]" >&2
  exit 2
fi
page="$1"
shift
program=("$@")

[[ -s "$page" ]] || { echo "FAIL: no manual page at $page" >&2; exit 1; }
# Plain ASCII text, wide enough that no option is broken across lines.
rendered="$(LC_ALL=C MANWIDTH=300 man -l "$page" 2>/dev/null | sed $'s/.\b//g')"
[[ -n "$rendered" ]] || { echo "FAIL: man -l $page renders nothing" >&2; exit 1; }

# The names a CLI11 help offers: options (-h, --help) and positionals (FILE), one a line.
offered_names() {
  awk '
    /^[^ ].*:$/ { section = $0; next }
    /^  [^ ]/ {
      line = substr($0, 3)
      if (match(line, /  +/)) line = substr(line, 1, RSTART - 1)
      if (section == "Positionals:") { split(line, w, " "); print w[1]; next }
      if (section == "Options:") {
        n = split(line, parts, ",")
        for (i = 1; i <= n; ++i) { split(parts[i], w, " "); if (w[1] ~ /^-/) print w[1] }
      }
    }'
}

# The subcommand names listed in a CLI11 help.
listed_subcommands() {
  awk '/^Subcommands:$/ { inside = 1; next } /^[^ ]/ { inside = 0 } inside && /^  [^ ]/ { print $1 }'
}

# The part of the rendered page under the subheading "NAME SUB", up to the next subheading
# of a subcommand or the next section.
subcommand_part() {
  awk -v heading="$name $1" -v prefix="$name " '
    { trimmed = $0; sub(/^ +/, "", trimmed); sub(/ +$/, "", trimmed) }
    inside && (/^[^ ]/ || (index(trimmed, prefix) == 1 && trimmed !~ / .* /)) { inside = 0 }
    trimmed == heading { inside = 1; found = 1; next }
    inside { print }
    END { if (!found) exit 1 }'
}

failures=0
# expect_names WHERE TEXT NAMES...: each NAME stands on its own in TEXT (not as part of a
# longer option).
expect_names() {
  local where="$1" text="$2" word
  shift 2
  for word in "$@"; do
    grep -qE -- "(^|[^A-Za-z0-9_-])$word([^A-Za-z0-9_-]|\$)" <<<"$text" && continue
    echo "FAIL: $where: $word is in --help but not in the manual page" >&2
    failures=$((failures + 1))
  done
}

main_help="$("${program[@]}" --help)" || { echo "FAIL: ${program[*]} --help failed" >&2; exit 1; }
name="$(awk '/^Usage: / { print $2; exit }' <<<"$main_help")"
[[ -n "$name" ]] || { echo "FAIL: ${program[*]} --help has no usage line" >&2; exit 1; }
mapfile -t names < <(offered_names <<<"$main_help")
((${#names[@]})) || { echo "FAIL: ${program[*]} --help lists no option" >&2; exit 1; }
expect_names "$name" "$rendered" "${names[@]}"
checked=${#names[@]}

mapfile -t subcommands < <(listed_subcommands <<<"$main_help")
for sub in "${subcommands[@]}"; do
  if ! part="$(subcommand_part "$sub" <<<"$rendered")"; then
    echo "FAIL: the manual page has no part for \"$name $sub\"" >&2
    failures=$((failures + 1))
    continue
  fi
  sub_help="$("${program[@]}" "$sub" --help)" ||
    { echo "FAIL: ${program[*]} $sub --help failed" >&2; exit 1; }
  mapfile -t names < <(offered_names <<<"$sub_help")
  if ((${#names[@]} == 0)); then
    echo "FAIL: ${program[*]} $sub --help lists no option" >&2
    failures=$((failures + 1))
    continue
  fi
  expect_names "$name $sub" "$part" "${names[@]}"
  checked=$((checked + ${#names[@]}))
done

if ((failures)); then
  echo "$failures names missing from $page" >&2
  exit 1
fi
listed=""
((${#subcommands[@]} == 0)) || listed="${#subcommands[@]} subcommands and "
echo "$page documents all $listed$checked option and positional names"
