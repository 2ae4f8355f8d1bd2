# Reads each export back as its readers would and prints what they find: the HTML's table cells through
# libxml2's HTML parser (xmllint), the spreadsheet's sheet and number formats from its XML parts, the
# text file as written (line ends shown), and the PDF's text through pdftotext. Then the money figures
# of each, in order, which are the same four times over.
set -u
cd "$HOME/exports"
ls
money() { grep -o '\$[0-9,]*\.[0-9][0-9]\|N/A' | tr '\n' ' '; echo; }
echo "--- LWExport.html"
xmllint --html --xpath '//table[1]//td[normalize-space()]' LWExport.html 2>/dev/null | sed 's/<[^>]*>//g; /^$/d'
echo "red cells: $(grep -o 'color:#ff0000' LWExport.html | wc -l)"
echo "--- LWExport.xls"
file -b LWExport.xls 2>/dev/null | cut -d, -f1
/usr/bin/python3 - <<'PY'
import re, zipfile, xml.etree.ElementTree as ET
ns = {'m': 'http://schemas.openxmlformats.org/spreadsheetml/2006/main'}
z = zipfile.ZipFile('LWExport.xls')
styles = ET.fromstring(z.read('xl/styles.xml'))
formats = {f.get('numFmtId'): f.get('formatCode') for f in styles.iter('{%s}numFmt' % ns['m'])}
xfs = [x.get('numFmtId') for x in styles.find('m:cellXfs', ns)]
sheet = ET.fromstring(z.read('xl/worksheets/sheet1.xml'))
figures = []
for row in sheet.iter('{%s}row' % ns['m']):
    cells = []
    for c in row.findall('m:c', ns):
        if c.get('t') == 'inlineStr':
            cells.append(''.join(t.text or '' for t in c.iter('{%s}t' % ns['m'])))
        else:
            v = c.find('m:v', ns).text
            fmt = formats.get(xfs[int(c.get('s', '0'))], 'General')
            cells.append('%s [%s]' % (v, fmt))
            if '$' in fmt:
                figures.append('$' + format(float(v), ',.2f'))
    print(row.get('r') + ': ' + ' | '.join(cells))
print('money cells shown by their format: ' + ' '.join(figures))
PY
echo "--- LWExport.txt"
echo "lines ending CR LF: $(grep -c $'\r$' LWExport.txt) of $(wc -l < LWExport.txt)"
sed 's/\r$//' LWExport.txt
echo "--- LWExport.pdf"
pdftotext -layout LWExport.pdf - | tr -s ' ' | sed 's/^ //; /^$/d'
echo "--- figures"
echo "html: $(xmllint --html --xpath '//td' LWExport.html 2>/dev/null | money)"
echo "text: $(money < LWExport.txt)"
echo "pdf:  $(pdftotext -layout LWExport.pdf - | money)"
