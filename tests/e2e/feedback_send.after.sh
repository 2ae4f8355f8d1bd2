# The requests the web view made of the site's feedback page.
curl -s "http://127.0.0.1:$LW_E2E_PORT/__control/log" | grep -F 'LeaveFeedback'
