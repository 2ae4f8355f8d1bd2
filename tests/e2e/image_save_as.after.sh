# The files in the two folders: the old picture is still there beside its copies.
ls pics "Saved Pics" | sed 's/^/  /'
cmp pics/teapot.jpg "Saved Pics/Red Teapot.JPG" && echo "  the copy is the picture"
