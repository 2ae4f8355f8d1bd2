// Test support for the media tests (included by tests only): the real program over a store installed
// from the shipped empty one, with the media screen registered, a user who answers file dialogs and
// modal forms from queues, and SANE pointed at its own test devices only.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <deque>
#include <fstream>

#include "core/primitives/convert.h"
#include "core/primitives/encoding.h"
#include "core/primitives/text.h"
#include "media/media_screen.h"
#include "screen/main/main_form.h"
#include "screen/main/startup.h"
#include "screen/testing.h"

namespace lw::testing {

// The scanners these tests see are SANE's test devices and nothing of the machine's. Set before the
// first SANE call of the process.
inline const bool kSaneTestDevices = [] {
  std::filesystem::path dir =
      std::filesystem::temp_directory_path() / ("lw_sane_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  std::ofstream(dir / "dll.conf") << "test\n";
  std::filesystem::copy_file(std::filesystem::path(LW_SOURCE_DIR) / "tests/e2e/scanner_test.conf",
                             dir / "test.conf", std::filesystem::copy_options::overwrite_existing);
  setenv("SANE_CONFIG_DIR", dir.c_str(), 1);
  return true;
}();

class MediaUi : public StubUi {
 public:
  struct Box {
    Text title, text;
  };
  std::vector<Box> boxes;
  std::deque<std::optional<std::filesystem::path>> files;  // nothing: the dialog is cancelled
  std::vector<FileDialogRequest> dialogs;
  std::function<void(Form&)> modal;

  MsgAnswer MsgBox(const Text& title, const Text& text, MsgButtons buttons, MsgIcon) override {
    boxes.push_back({title, text});
    return ButtonsOf(buttons).front();
  }
  std::optional<FileDialogAnswer> ShowOpen(const FileDialogRequest& r) override { return Answer(r); }
  std::optional<FileDialogAnswer> ShowSave(const FileDialogRequest& r) override { return Answer(r); }
  void ShowModal(Form& form) override {
    if (modal) modal(form);
  }

 private:
  std::optional<FileDialogAnswer> Answer(const FileDialogRequest& r) {
    dialogs.push_back(r);
    if (files.empty() || !files.front()) {
      if (!files.empty()) files.pop_front();
      return std::nullopt;
    }
    FileDialogAnswer a{*files.front(), 1};
    files.pop_front();
    return a;
  }
};

class MediaTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = FreshTestHome("lw_media_", ::testing::UnitTest::GetInstance()->current_test_info()->name());
    settings_ = std::make_unique<Settings>(dir_ / "config" / "settings.ini");
    settings_->SaveSetting(u"Lotwright", u"Network", u"timeout", u"3");
    program_ =
        std::make_unique<Program>(ui_, queue_, *settings_,
                                  ProgramFiles{std::filesystem::path(LW_BINARY_DIR) / "share" / "lw.mdb",
                                               dir_ / "lotwright-convert", dir_ / "help"});
    program_->clock.Fix(MakeDate(2026, 11, 20, 12, 0, 0));
    CreateForms(*program_);
    RegisterMedia(*program_);
    Main(*program_);
    Exec("UPDATE setup SET Userid = 'alice', ebay_image_loc = 'http://pics.example.com/~alice/'");
    Exec("DELETE FROM seller");
    Exec("DELETE FROM bidder");
    program_->startup.setup->Requery();
    main().load_userids();
    main().Userid_lst.SetText(u"alice");
    ui_.boxes.clear();
  }
  void TearDown() override {
    program_.reset();
    settings_.reset();
    std::filesystem::remove_all(dir_);
  }

  MainForm& main() { return *program_->main; }
  // RegisterMedia is the only subsystem these tests register.
  MediaScreen& media() { return *static_cast<MediaScreen*>(program_->subsystems.front().get()); }
  void Exec(const std::string& sql) { program_->startup.db->Execute(FromUtf8(sql)); }
  Text Query(const std::string& sql) {
    auto rs = program_->startup.db->OpenRecordset(FromUtf8(sql));
    if (rs->Eof()) return u"<none>";
    Variant v = rs->Fields(rs->FieldNames().front());
    return v.IsNull() ? Text(u"<null>") : CStr(v, program_->regional);
  }
  // Shows the seller rows afresh, the first one current.
  void ShowSellers() {
    main().seller.RecordSource = u"Select * From seller order by Item";
    main().seller.Refresh();
  }
  Text Get(const char16_t* name, int index = -1) { return main().Get(name, index).text(); }
  void Pump() { ASSERT_TRUE(queue_.Pump(std::chrono::seconds(20))); }
  std::filesystem::path Copy(const char* fixture, const std::filesystem::path& to) {
    std::filesystem::create_directories(to.parent_path());
    std::filesystem::copy_file(std::filesystem::path(LW_SOURCE_DIR) / "tests/e2e/image_files" / fixture, to,
                               std::filesystem::copy_options::overwrite_existing);
    return to;
  }
  Text U(const std::filesystem::path& p) { return FromUtf8(p.string()); }

  std::filesystem::path dir_;
  MediaUi ui_;
  EventQueue queue_;
  std::unique_ptr<Settings> settings_;
  std::unique_ptr<Program> program_;
};

}  // namespace lw::testing
