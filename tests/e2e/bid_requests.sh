# Prints the requests the loopback HTTP server answered, method and target, for an after-check.
/usr/bin/python3 -c "
import os, urllib.request
log = urllib.request.urlopen('http://127.0.0.1:%s/__control/log' % os.environ['LW_E2E_PORT']).read().decode()
for line in log.splitlines():
    method, target = line.split(' ')[:2]
    if not target.startswith('/__control'):
        print('  %s %s' % (method, target))
"
