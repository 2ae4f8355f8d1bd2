// Linked into the desktop programs of the sanitized build only. Qt WebEngine deletes some of its objects
// through a base of another size and keeps some allocations to the end, as fontconfig keeps its caches;
// none of it is ours to fix, and each would stop every window test before it told us anything about our
// own code.
extern "C" const char* __asan_default_options() { return "new_delete_type_mismatch=0"; }
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\nleak:libQt6WebEngineCore.so\n";
}
