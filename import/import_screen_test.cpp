// The import units read their hosts, offsets and credentials from the misc and setup rows through one
// set of readers; a Null, a missing column, a row that is not there or a number typed as words must give
// nothing (or 0) rather than an error that would stop an import before it starts.
#include "import/import_screen.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/store/store.h"
#include "screen/testing.h"

namespace lw {
namespace {

TEST(ImportRows, NullMissingAndUnreadableValuesGiveNothing) {
  namespace fs = std::filesystem;
  fs::path dir = testing::FreshTestHome("lw_import_rows_", "rows");
  fs::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir / "lw.mdb");
  Regional regional = Regional::FromLocale("nl_NL");
  {
    auto db = Database::OpenDatabase(dir / "lw.mdb", regional);
    db->Execute(u"Update misc set servername_email = Null, servername_desc = '127.0.0.1:8080'");
    db->Execute(u"Update misc set Ebay_hour_difference = 2.5, Ebay_minute_difference = Null");
    auto misc = db->OpenRecordset(u"Select * From misc");
    EXPECT_EQ(RowValue(misc.get(), u"servername_desc", regional), Text(u"127.0.0.1:8080"));
    EXPECT_EQ(RowValue(misc.get(), u"servername_email", regional), std::nullopt);
    EXPECT_EQ(RowText(misc.get(), u"no_such_column", regional), u"");
    EXPECT_EQ(RowNumber(misc.get(), u"Ebay_hour_difference", regional), 2.5);
    EXPECT_EQ(RowNumber(misc.get(), u"Ebay_minute_difference", regional), 0);
    EXPECT_EQ(RowNumber(misc.get(), u"servername_desc", regional), 0);  // words, not a number
    EXPECT_EQ(RowText(nullptr, u"servername_desc", regional), u"");

    auto none = db->OpenRecordset(u"Select * From setup where Userid = 'nobody'");
    EXPECT_EQ(RowValue(none.get(), u"Userid", regional), std::nullopt);
    EXPECT_EQ(RowNumber(none.get(), u"taxrate", regional), 0);
  }
  fs::remove_all(dir);
}

}  // namespace
}  // namespace lw
