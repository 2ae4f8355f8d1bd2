// A list import wired to a real store copied from the shipped empty one, a fixed clock and a Ui that
// records what it is shown: shared by the seller and bidder list tests.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "core/primitives/encoding.h"
#include "core/store/store.h"
#include "import/file_display.h"
#include "import/import_context.h"
#include "import/normalise.h"
#include "screen/testing.h"

namespace lw::testing {

struct ShownMessage {
  Text title, text;
  MsgButtons buttons;
  MsgIcon icon;
};

class ImportRecordingUi : public StubUi {
 public:
  std::vector<ShownMessage> shown;
  std::deque<MsgAnswer> answers;  // queued answers; without one the first button is taken

  // Called as each message comes up, while the program waits for the answer.
  std::function<void(const Text& title)> on_message;

  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon icon) override {
    shown.push_back({title, text, buttons, icon});
    if (on_message) on_message(title);
    if (!answers.empty()) {
      MsgAnswer a = answers.front();
      answers.pop_front();
      return a;
    }
    return ButtonsOf(buttons).front();
  }
  void SetWaitCursor(bool on) override { wait_cursor = on; }
  bool wait_cursor = false;
};

inline std::string ReadFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline std::filesystem::path PagePath(const std::string& name) {
  return std::filesystem::path(LW_SOURCE_DIR) / "tests/e2e/pages" / name;
}

// One row of a list page as the site serves it: a table row, one cell to a source line.
inline std::string PageRow(const std::vector<std::string>& cells) {
  std::string r = "<tr>\r\n";
  for (const auto& c : cells) r += "<td>" + c + "</td>\r\n";
  return r + "</tr>\r\n";
}

inline std::string ListPage(const std::string& last_heading, const std::string& rows) {
  return "<html>\r\n<body>\r\n<table>\r\n<tr>\r\n<th>Item#</th>\r\n<th>Start</th>\r\n<th>End</th>\r\n"
         "<th>Price</th>\r\n<th>Title</th>\r\n<th>High Bidder</th>\r\n<th>" +
         last_heading + "</th>\r\n</tr>\r\n" + rows +
         "</table>\r\n<p>About eBay | Announcements | Help</p>\r\n"
         "<p>Copyright 1995-2026 eBay Inc. All Rights Reserved.</p>\r\n</body>\r\n</html>\r\n";
}

class ListImportTest : public ::testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
    for (char& c : name) {
      if (c == '/') c = '_';
    }
    dir_ = std::filesystem::temp_directory_path() / ("lw-lists-" + std::to_string(::getpid()) + "-" + name);
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_);
    std::filesystem::copy_file(LW_BINARY_DIR "/share/lw.mdb", dir_ / "lw.mdb");
    regional_ = std::make_unique<Regional>(Regional::FromLocale(Locale()));
    db_ = Database::OpenDatabase(dir_ / "lw.mdb", *regional_);
    seller_ = std::make_unique<DataSource>(*db_, u"seller");
    bidder_ = std::make_unique<DataSource>(*db_, u"Bidder");
    clock_.Fix(MakeDate(2026, 11, 22, 12, 0, 0));
    ctx_ = std::make_unique<ImportContext>(ImportContext{.db = *db_,
                                                         .seller = *seller_,
                                                         .bidder = *bidder_,
                                                         .regional = *regional_,
                                                         .clock = clock_,
                                                         .ui = ui_,
                                                         .offsets = {},
                                                         .userid = u"lotseller",
                                                         .site = u"eBay",
                                                         .setup_userid = u"lotseller",
                                                         .folder = dir_});
    ctx_->status = [this](const Text& t) { statuses_.push_back(t); };
    ctx_->auction_filter = [this] { ++filters_; };
    ctx_->show_last_import = [this] { ++last_import_shown_; };
    ctx_->show_browser_page = [this] { ++browser_page_shown_; };
    ctx_->enable_advanced_edit = [this](bool on) { advanced_edit_ = on; };
  }
  void TearDown() override {
    ctx_.reset();
    seller_.reset();
    bidder_.reset();
    db_.reset();
    std::filesystem::remove_all(dir_);
  }

  virtual std::string Locale() const { return GetParam(); }

  // The manual menu's order: tags first, then the replacement rows.
  void Normalise(FileDisplay& buffer) {
    parse_HTML(buffer, [](const Text&) {});
    pre_parse_HTML(buffer);
  }
  FileDisplay LoadPage(const std::string& file) {
    FileDisplay buffer;
    buffer.LoadFile(PagePath(file));
    Normalise(buffer);
    return buffer;
  }
  FileDisplay PageFromHtml(const std::string& html) {
    FileDisplay buffer;
    buffer.set_text(FromUtf8(html));
    Normalise(buffer);
    return buffer;
  }

  std::unique_ptr<Recordset> Rows(const std::string& sql) { return db_->OpenRecordset(T(sql)); }
  int64_t Count(const std::string& sql) {
    auto rs = Rows(sql);
    if (rs->Eof()) return 0;
    rs->MoveLast();
    return rs->RecordCount();
  }
  void Exec(const std::string& sql) { db_->Execute(T(sql)); }

  static std::string Str(const Recordset& rs, const char* field) {
    Variant v = rs.Fields(T(field));
    return v.text() ? ToUtf8(*v.text()) : v.IsNull() ? "<null>" : "<not text>";
  }
  static double Num(const Recordset& rs, const char* field) {
    Variant v = rs.Fields(T(field));
    if (v.currency()) return v.currency()->ToDouble();
    if (v.number()) return *v.number();
    return -999999;
  }
  static bool Flag(const Recordset& rs, const char* field) {
    Variant v = rs.Fields(T(field));
    return v.boolean() && *v.boolean();
  }
  Text LastStatus() const { return statuses_.empty() ? Text() : statuses_.back(); }

  std::filesystem::path dir_;
  std::unique_ptr<Regional> regional_;
  std::unique_ptr<Database> db_;
  std::unique_ptr<DataSource> seller_, bidder_;
  Clock clock_;
  ImportRecordingUi ui_;
  std::unique_ptr<ImportContext> ctx_;
  std::vector<Text> statuses_;
  int filters_ = 0;
  int last_import_shown_ = 0;
  int browser_page_shown_ = 0;
  bool advanced_edit_ = false;
};

}  // namespace lw::testing
