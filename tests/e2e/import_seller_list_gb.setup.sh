# The same pages and empty store as import_seller_list, read under another locale.
. "$LW_E2E_DIR/import_seller_list.setup.sh"
