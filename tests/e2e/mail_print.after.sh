# The printed letter, read back from the PDF the viewer was given.
pdftotext -layout "$XDG_DATA_HOME/lotwright/emailreport.pdf" - | sed -e 's/[[:space:]]*$//'
