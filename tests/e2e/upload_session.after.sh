# What the server keeps: the picture in the account's directory under its picture name, the same bytes
# as the local file; and the commands of the first two sessions.
ls "$LW_E2E_WORK/ftp/root/pics/pics" | sed 's/^/  /'
cmp "Listing Pics/teapot.jpg" "$LW_E2E_WORK/ftp/root/pics/pics/Teapot.jpg" && echo "  the same bytes"
head -n 17 "$LW_E2E_WORK/ftp/commands.log" | sed 's/^/  /'
