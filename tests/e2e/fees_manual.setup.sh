# The seller of fees_import, with the account page saved from the site, and pages that are no account
# page: random bytes, the page cut short (in a line and in a tag), a page without fees, and a page of ten megabytes.
. "$LW_E2E_DIR/fees_import.setup.sh"
cp "$LW_E2E_DIR/pages/fees_account.html" "$HOME/account.htm"
head -c 2500 "$LW_E2E_DIR/pages/fees_account.html" > "$HOME/cut short.htm"
/usr/bin/python3 - "$HOME" <<'PY'
import random, sys
home = sys.argv[1]
random.seed(15)
open(home + "/random.htm", "wb").write(bytes(random.randrange(256) for _ in range(65536)))
page = open(home + "/account.htm", encoding="utf-8").read()
head, rest = page.split("<tr><td>50000001 ", 1)
tail = rest[rest.index("<tr><td>Current Account Balance;"):]
open(home + "/cut in a tag.htm", "w", encoding="utf-8").write(page[: page.index("<tr><td>50000017") + 6])
open(home + "/no fees.htm", "w", encoding="utf-8").write(head + tail)
# Ten megabytes of fees for auctions that are not in the store, and behind them one that is.
row = "<tr><td>%d </td><td>Nov-01-26</td><td>Insertion fee</td><td>%d</td><td>--</td><td>$0.30 </td><td>$1.00</td></tr>\r\n"
rows = [row % (60000000 + i, 4099000000 + i) for i in range(100000)]
rows.append(row % (69999999, 4012345605))
open(home + "/large.htm", "w", encoding="utf-8").write(head + "".join(rows) + tail)
PY
