/usr/bin/python3 "$LW_E2E_DIR/mail_show.py" "$LW_E2E_WORK/smtp" | grep -E '^(0|To:|Subject:)'
