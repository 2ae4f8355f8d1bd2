. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
echo "headers of the test call:"
cat "$api/003-ValidateTestUserRegistration.headers"
cd "$XDG_DATA_HOME/lotwright"
echo "test_post.xml:"
cat test_post.xml
echo "test_return.xml:"
cat test_return.xml
