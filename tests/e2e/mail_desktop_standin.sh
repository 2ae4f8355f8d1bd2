#!/bin/sh
# Stands in for one of the desktop's programs (xdg-email, xdg-open) in the tests: each call appends a line
# 'NAME "ARG" "ARG" ...' to $HOME/desktop.log, with line ends in the arguments shown as \r and \n. A call
# whose last argument is listed in $HOME/NAME.refuse ends with status 3, as xdg-email does when the
# mail program cannot take the letter.
name=$(basename "$0")
line="$name"
last=
for a in "$@"; do
  # The X keeps a line end at the very end from being eaten by the command substitution.
  shown=$(printf '%sX' "$a" | sed -e ':a' -e 'N' -e '$!ba' -e 's/\r/\\r/g' -e 's/\n/\\n/g')
  line="$line \"${shown%X}\""
  last=$a
done
printf '%s\n' "$line" >> "$HOME/desktop.log"
if [ -f "$HOME/$name.refuse" ] && grep -qxF -- "$last" "$HOME/$name.refuse"; then
  exit 3
fi
exit 0
