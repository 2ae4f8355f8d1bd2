// The image page on the real main form: the picture of the row on show with its details, and the three
// names of a picture kept apart through Browse and Save Image As on either side. The end-to-end tests
// drive the bad files and the scanner.
#include <gtest/gtest.h>

#include "media/media_testing.h"
#include "media/scanner.h"
#include "screen/picture_box.h"

namespace lw {
namespace {

namespace fs = std::filesystem;

class ImagePageTest : public testing::MediaTest {
 protected:
  PictureBox& picture() { return main().Get<PictureBox>(u"PicBuf1"); }
  // Width, height, size and depth as the four labels show them.
  std::string Details() {
    std::string out;
    for (int i : {89, 91, 92, 93}) out += (out.empty() ? "" : " ") + ToUtf8(Get(u"Label1", i));
    return out;
  }
  void Toolbar8(int button) { program_->routines.Call("ctToolBar8(" + std::to_string(button) + ")"); }
};

TEST_F(ImagePageTest, RowsShowTheirPicturesAndTypingAPathNamesIt) {
  fs::path teapot = Copy("teapot.jpg", dir_ / "pics" / "teapot.jpg");
  fs::path marbles = Copy("marbles.gif", dir_ / "pics" / "marbles.gif");
  Exec(
      "INSERT INTO seller (Item, Title, username, Pic_location, Pic_name) VALUES ('1', 'Teapot', 'alice', '" +
      teapot.string() + "', 'Teapot.JPG')");
  Exec(
      "INSERT INTO seller (Item, Title, username, Pic_location, Pic_name) VALUES ('2', 'Marbles', 'alice', "
      "'" +
      marbles.string() + "', 'marbles.gif')");
  Exec("INSERT INTO seller (Item, Title, username) VALUES ('3', 'Nothing', 'alice')");
  main().SSTab1.SetTab(3);
  ShowSellers();
  EXPECT_EQ(Details(), "64 48 1349 24");
  EXPECT_TRUE(picture().visible());
  // Showing a row keeps the name it stored, even where the file's own name differs in case.
  EXPECT_EQ(Get(u"pic_name_txt", 0), u"Teapot.JPG");
  main().seller.MoveNext();
  EXPECT_EQ(Details(), "40 30 717 2");
  EXPECT_EQ(picture().file_name(), U(marbles));
  main().seller.MoveNext();
  EXPECT_EQ(Details(), "NA NA NA NA");
  EXPECT_FALSE(picture().visible());

  // A typed path names the picture and shows it; the row takes both when it is saved.
  main().Get(u"image_loc_txt", 0).UserSet(U(teapot));
  EXPECT_EQ(Get(u"pic_name_txt", 0), u"teapot.jpg");
  EXPECT_EQ(Details(), "64 48 1349 24");
  main().seller.UpdateRecord();
  EXPECT_EQ(Query("Select Pic_name From seller where Item = '3'"), u"teapot.jpg");
  main().seller.MoveFirst();
  EXPECT_EQ(Query("Select Pic_name From seller where Item = '1'"), u"Teapot.JPG");

  for (int mode : {2, 5, 4}) {
    main().Get(mode == 4 ? u"image_btn1" : mode == 2 ? u"image_btn2" : u"image_btn3").UserClick(nullptr);
    EXPECT_EQ(picture().display_mode(), mode);
  }
}

TEST_F(ImagePageTest, SaveAsCopiesAndRenamesAllThreeNames) {
  fs::path old_file = Copy("teapot.jpg", dir_ / "pics" / "teapot.jpg");
  Exec(
      "INSERT INTO seller (Item, Title, username, Pic_location, Pic_name) VALUES ('1', 'Teapot', 'alice', '" +
      old_file.string() + "', 'teapot.jpg')");
  // The web location lacks its closing slash: the address runs into the name, as typed.
  Exec("UPDATE setup SET ebay_image_loc = 'http://pics.example.com/alice'");
  main().setup_datacontrl.Refresh();
  ShowSellers();
  main().SSTab1.SetTab(3);
  fs::path chosen = dir_ / "Listing Shots" / "Red Teapot.JPG";
  fs::create_directories(chosen.parent_path());
  ui_.files.push_back(chosen);
  Toolbar8(3);
  ASSERT_EQ(ui_.dialogs.size(), 1u);
  EXPECT_EQ(ui_.dialogs[0].title, u"Image Save");
  EXPECT_EQ(ui_.dialogs[0].filter, u"Image Files (*.jpg)|*.jpg");
  EXPECT_EQ(ui_.dialogs[0].initial_dir, U(dir_ / "pics"));
  EXPECT_TRUE(fs::exists(old_file));
  EXPECT_TRUE(fs::exists(chosen));
  EXPECT_EQ(Get(u"image_loc_txt", 0), LCase(U(chosen)));
  EXPECT_EQ(Get(u"pic_name_txt", 0), u"Red Teapot.JPG");
  EXPECT_EQ(Get(u"image_loc_txt", 2), u"http://pics.example.com/aliceRed Teapot.JPG");
  EXPECT_EQ(Query("Select Pic_name From seller"), u"Red Teapot.JPG");
  EXPECT_EQ(Query("Select Pic_location From seller"), LCase(U(chosen)));
  // The location is kept in lower case; the file it names is still found, folders in capitals and all.
  EXPECT_EQ(Details(), "64 48 1349 24");
  EXPECT_EQ(picture().file_name(), LCase(U(chosen)));

  // Another ending is copied and named, but shown only by the next refresh.
  main().Get(u"image_loc_txt", 0).UserSet(U(old_file));
  fs::path other = dir_ / "pics" / "teapot.jpeg";
  ui_.files.push_back(other);
  Toolbar8(3);
  EXPECT_TRUE(fs::exists(other));
  EXPECT_EQ(Get(u"pic_name_txt", 0), u"teapot.jpeg");
  EXPECT_EQ(picture().file_name(), U(old_file));
  program_->routines.Call("refresh_picture");
  EXPECT_EQ(picture().file_name(), LCase(U(other)));

  // A cancelled dialog and a copy that fails end the command, leaving everything as it was.
  ui_.files.push_back(std::nullopt);
  Toolbar8(3);
  main().Get(u"image_loc_txt", 0).UserSet(U(dir_ / "gone.jpg"));
  ui_.files.push_back(dir_ / "pics" / "copy.jpg");
  Toolbar8(3);
  EXPECT_FALSE(fs::exists(dir_ / "pics" / "copy.jpg"));
  EXPECT_EQ(Get(u"image_loc_txt", 0), U(dir_ / "gone.jpg"));
  EXPECT_TRUE(ui_.boxes.empty());
}

TEST_F(ImagePageTest, BrowseOnTheBidderSideNamesTheBidderRow) {
  fs::path marbles = Copy("marbles.gif", dir_ / "marbles.gif");
  Exec("INSERT INTO seller (Item, Title, username) VALUES ('1', 'Teapot', 'alice')");
  Exec("INSERT INTO bidder (Item, Title, username) VALUES ('9', 'Marbles', 'alice')");
  ShowSellers();
  main().Auction_type_lst.SetText(u"Bidder");
  main().Bidder.RecordSource = u"Select * From bidder";
  main().Bidder.Refresh();
  main().SSTab1.SetTab(3);
  EXPECT_FALSE(main().Get(u"image_loc_txt", 0).visible());
  EXPECT_TRUE(main().Get(u"image_loc_txt", 1).visible());
  ui_.files.push_back(marbles);
  Toolbar8(5);
  EXPECT_EQ(ui_.dialogs.back().title, u"Image Display");
  EXPECT_EQ(ui_.dialogs.back().filter, u"Image Files (*.jpg;*.gif)|*.jpg;*.gif");
  EXPECT_EQ(Query("Select Pic_name From bidder"), u"marbles.gif");
  EXPECT_EQ(Query("Select Pic_location From bidder"), LCase(U(marbles)));
  EXPECT_EQ(Query("Select Pic_name From seller"), u"<null>");
  EXPECT_EQ(Get(u"image_loc_txt", 2), u"http://pics.example.com/~alice/marbles.gif");
  EXPECT_EQ(Details(), "40 30 717 2");
}

TEST(ScannedPictures, OnlyWholePicturesAreSaved) {
  fs::path file = fs::temp_directory_path() / ("lw_scan_" + std::to_string(::getpid()) + ".jpg");
  ScannedPicture grey{3, 2, 1, std::vector<unsigned char>(6, 200)};
  EXPECT_TRUE(SaveJpeg(file, grey));
  EXPECT_GT(fs::file_size(file), 0u);
  ScannedPicture short_rows{3, 2, 3, std::vector<unsigned char>(10, 0)};
  EXPECT_FALSE(SaveJpeg(file, short_rows));
  EXPECT_FALSE(SaveJpeg(fs::temp_directory_path() / "no such folder" / "x.jpg", grey));
  fs::remove(file);
}

}  // namespace
}  // namespace lw
