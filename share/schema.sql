-- The layout of the auction store and the rows an empty store ships with.
-- Declared types name the program's column kinds, with the storage class after them:
--   YESNO INTEGER    -1 yes, 0 no; never Null, no until a value is written
--   MONEY INTEGER    exact money scaled by 10 000
--   DATETIME REAL    days since 1899-12-30, time of day as the fraction
--   NUMBER REAL      plain number
--   TEXT, MEMO TEXT  text compared without regard to case
-- Every other column has no default and may be Null.
PRAGMA journal_mode = WAL;
BEGIN;
CREATE TABLE seller (
  "Item"                  TEXT COLLATE NOCASE,
  "username"              TEXT COLLATE NOCASE,
  "site"                  TEXT COLLATE NOCASE,
  "Title"                 TEXT COLLATE NOCASE,
  "Description1"          MEMO TEXT COLLATE NOCASE,
  "category"              TEXT COLLATE NOCASE,
  "category_no"           TEXT COLLATE NOCASE,
  "category_no2"          TEXT COLLATE NOCASE,
  "Length"                NUMBER REAL,
  "Minbid"                MONEY INTEGER,
  "Reserve"               MONEY INTEGER,
  "buyitnow"              MONEY INTEGER,
  "Quantity"              NUMBER REAL,
  "Cost"                  MONEY INTEGER,
  "picurl"                TEXT COLLATE NOCASE,
  "Pic_location"          TEXT COLLATE NOCASE,
  "Pic_name"              TEXT COLLATE NOCASE,
  "template"              YESNO INTEGER NOT NULL DEFAULT 0,
  "pending"               YESNO INTEGER NOT NULL DEFAULT 0,
  "Bulk_list"             YESNO INTEGER NOT NULL DEFAULT 0,
  "Bulk_list_siteid"      NUMBER REAL,
  "Bulk_data"             MEMO TEXT COLLATE NOCASE,
  "Start"                 DATETIME REAL,
  "End"                   DATETIME REAL,
  "Price"                 MONEY INTEGER,
  "No_bids"               NUMBER REAL,
  "Id"                    TEXT COLLATE NOCASE,
  "Email"                 TEXT COLLATE NOCASE,
  "rating"                NUMBER REAL,
  "Reserve_met"           YESNO INTEGER NOT NULL DEFAULT 0,
  "Completed"             YESNO INTEGER NOT NULL DEFAULT 0,
  "Duplicated"            YESNO INTEGER NOT NULL DEFAULT 0,
  "lastupdated"           DATETIME REAL,
  "Contact"               YESNO INTEGER NOT NULL DEFAULT 0,
  "Response"              YESNO INTEGER NOT NULL DEFAULT 0,
  "Payment"               YESNO INTEGER NOT NULL DEFAULT 0,
  "Trans_comp"            YESNO INTEGER NOT NULL DEFAULT 0,
  "Status_date"           DATETIME REAL,
  "status_log"            MEMO TEXT COLLATE NOCASE,
  "Feedback"              YESNO INTEGER NOT NULL DEFAULT 0,
  "Name"                  TEXT COLLATE NOCASE,
  "Address"               MEMO TEXT COLLATE NOCASE,
  "Pay_method"            TEXT COLLATE NOCASE,
  "tracking_no"           TEXT COLLATE NOCASE,
  "Comments"              MEMO TEXT COLLATE NOCASE,
  "taxable"               YESNO INTEGER NOT NULL DEFAULT 0,
  "Ship_cost"             MONEY INTEGER,
  "insure_cost"           MONEY INTEGER,
  "price_tax"             MONEY INTEGER,
  "ship_tax"              MONEY INTEGER,
  "insure_tax"            MONEY INTEGER,
  "total_tax"             MONEY INTEGER,
  "total_charges"         MONEY INTEGER,
  "total_purchase"        MONEY INTEGER,
  "actual_ship_cost"      MONEY INTEGER,
  "actual_insure_cost"    MONEY INTEGER,
  "actual_other_cost"     MONEY INTEGER,
  "actual_price_tax"      MONEY INTEGER,
  "actual_ship_tax"       MONEY INTEGER,
  "actual_insure_tax"     MONEY INTEGER,
  "actual_other_tax"      MONEY INTEGER,
  "actual_total_tax"      MONEY INTEGER,
  "apply_costpricetax"    YESNO INTEGER NOT NULL DEFAULT 0,
  "apply_actualshiptax"   YESNO INTEGER NOT NULL DEFAULT 0,
  "apply_actualinsuretax" YESNO INTEGER NOT NULL DEFAULT 0,
  "apply_actualothertax"  YESNO INTEGER NOT NULL DEFAULT 0,
  "fee_ref_no"            TEXT COLLATE NOCASE,
  "fee_insertion"         MONEY INTEGER,
  "fee_credit_insertion"  MONEY INTEGER,
  "fee_final_value"       MONEY INTEGER,
  "fee_final_value_fixed" MONEY INTEGER,
  "fee_gallery"           MONEY INTEGER,
  "fee_featured_plus"     MONEY INTEGER,
  "fee_10day"             MONEY INTEGER,
  "fee_picture"           MONEY INTEGER,
  "fee_nosale_credit"     MONEY INTEGER,
  "fee_picturepack"       MONEY INTEGER,
  "fee_reserve"           MONEY INTEGER,
  "fee_reserve_credit"    MONEY INTEGER,
  "fee_bold"              MONEY INTEGER,
  "fee_highlight"         MONEY INTEGER,
  "fee_home"              MONEY INTEGER,
  "fee_scheduled"         MONEY INTEGER,
  "fee_Gift_Services"     MONEY INTEGER,
  "fee_bin"               MONEY INTEGER
);
CREATE TABLE bidder (
  "Item"         TEXT COLLATE NOCASE,
  "username"     TEXT COLLATE NOCASE,
  "site"         TEXT COLLATE NOCASE,
  "Title"        TEXT COLLATE NOCASE,
  "Description1" MEMO TEXT COLLATE NOCASE,
  "category"     TEXT COLLATE NOCASE,
  "Length"       NUMBER REAL,
  "Minbid"       MONEY INTEGER,
  "Reserve"      MONEY INTEGER,
  "Quantity"     NUMBER REAL,
  "Cost"         MONEY INTEGER,
  "Pic_location" TEXT COLLATE NOCASE,
  "Pic_name"     TEXT COLLATE NOCASE,
  "Start"        DATETIME REAL,
  "End"          DATETIME REAL,
  "Price"        MONEY INTEGER,
  "No_bids"      NUMBER REAL,
  "Id"           TEXT COLLATE NOCASE,
  "Email"        TEXT COLLATE NOCASE,
  "Reserve_met"  YESNO INTEGER NOT NULL DEFAULT 0,
  "Completed"    YESNO INTEGER NOT NULL DEFAULT 0,
  "Duplicated"   YESNO INTEGER NOT NULL DEFAULT 0,
  "lastupdated"  DATETIME REAL,
  "Contact"      YESNO INTEGER NOT NULL DEFAULT 0,
  "Response"     YESNO INTEGER NOT NULL DEFAULT 0,
  "Payment"      YESNO INTEGER NOT NULL DEFAULT 0,
  "Trans_comp"   YESNO INTEGER NOT NULL DEFAULT 0,
  "Status_date"  DATETIME REAL,
  "status_log"   MEMO TEXT COLLATE NOCASE,
  "Feedback"     YESNO INTEGER NOT NULL DEFAULT 0,
  "Name"         TEXT COLLATE NOCASE,
  "Address"      MEMO TEXT COLLATE NOCASE,
  "Pay_method"   TEXT COLLATE NOCASE,
  "tracking_no"  TEXT COLLATE NOCASE,
  "Comments"     MEMO TEXT COLLATE NOCASE,
  "Ship_cost"    MONEY INTEGER,
  "Seller_id"    TEXT COLLATE NOCASE,
  "Seller_email" TEXT COLLATE NOCASE,
  "watching"     YESNO INTEGER NOT NULL DEFAULT 0,
  "Bulk_list"    YESNO INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE setup (
  "Userid"                 TEXT COLLATE NOCASE,
  "Password"               TEXT COLLATE NOCASE,
  "pass1"                  TEXT COLLATE NOCASE,
  "UserEmail"              TEXT COLLATE NOCASE,
  "Name"                   TEXT COLLATE NOCASE,
  "address"                MEMO TEXT COLLATE NOCASE,
  "Signiture"              TEXT COLLATE NOCASE,
  "Location"               TEXT COLLATE NOCASE,
  "emailusername"          TEXT COLLATE NOCASE,
  "emailpassword"          TEXT COLLATE NOCASE,
  "smtphost"               TEXT COLLATE NOCASE,
  "pophost"                TEXT COLLATE NOCASE,
  "mapi_compliant"         YESNO INTEGER NOT NULL DEFAULT 0,
  "mailconnecttype"        NUMBER REAL,
  "Sale_conditions"        MEMO TEXT COLLATE NOCASE,
  "Bidder_comments"        MEMO TEXT COLLATE NOCASE,
  "Rec_payment_comment"    MEMO TEXT COLLATE NOCASE,
  "Sent_payment_comment"   MEMO TEXT COLLATE NOCASE,
  "Goods_sent_comment"     MEMO TEXT COLLATE NOCASE,
  "Goods_received_comment" MEMO TEXT COLLATE NOCASE,
  "feedback_request"       MEMO TEXT COLLATE NOCASE,
  "description_footer"     MEMO TEXT COLLATE NOCASE,
  "taxprice"               YESNO INTEGER NOT NULL DEFAULT 0,
  "taxshipping"            YESNO INTEGER NOT NULL DEFAULT 0,
  "taxinsurance"           YESNO INTEGER NOT NULL DEFAULT 0,
  "taxrate"                NUMBER REAL,
  "referralenabled"        YESNO INTEGER NOT NULL DEFAULT 0,
  "ebay_image_loc"         TEXT COLLATE NOCASE,
  "ftphost"                TEXT COLLATE NOCASE,
  "ftplogonname"           TEXT COLLATE NOCASE,
  "ftplogonpass"           TEXT COLLATE NOCASE,
  "ftpaccount"             TEXT COLLATE NOCASE,
  "ftpdirectory"           TEXT COLLATE NOCASE,
  "galleryitem"            YESNO INTEGER NOT NULL DEFAULT 0,
  "galleryfeatured"        TEXT COLLATE NOCASE,
  "sell_format"            TEXT COLLATE NOCASE,
  "listregionally"         TEXT COLLATE NOCASE,
  "countrylocation"        TEXT COLLATE NOCASE,
  "payoption"              TEXT COLLATE NOCASE,
  "taxstate"               TEXT COLLATE NOCASE,
  "shippay"                TEXT COLLATE NOCASE,
  "shipto"                 TEXT COLLATE NOCASE,
  "shipregion"             TEXT COLLATE NOCASE,
  "boldtitle"              TEXT COLLATE NOCASE,
  "featured"               TEXT COLLATE NOCASE,
  "catfeatured"            TEXT COLLATE NOCASE,
  "private"                TEXT COLLATE NOCASE,
  "highlight"              TEXT COLLATE NOCASE,
  "giftwrap"               TEXT COLLATE NOCASE,
  "expresship"             TEXT COLLATE NOCASE,
  "shiptorecipient"        TEXT COLLATE NOCASE,
  "gifticon"               TEXT COLLATE NOCASE,
  "counter_type"           TEXT COLLATE NOCASE,
  "usecheckout"            TEXT COLLATE NOCASE,
  "insurance_option"       TEXT COLLATE NOCASE,
  "ship_cost_in_stax"      TEXT COLLATE NOCASE,
  "buyer_edit_total"       TEXT COLLATE NOCASE,
  "insurancefee"           TEXT COLLATE NOCASE,
  "shipfee"                TEXT COLLATE NOCASE,
  "exshipfee"              TEXT COLLATE NOCASE,
  "returnpolicy"           TEXT COLLATE NOCASE
);
CREATE TABLE misc (
  "Ebay_hour_difference"   NUMBER REAL,
  "Ebay_minute_difference" NUMBER REAL,
  "servername_import"      TEXT COLLATE NOCASE,
  "servername_import1"     TEXT COLLATE NOCASE,
  "servername_desc"        TEXT COLLATE NOCASE,
  "servername_email"       TEXT COLLATE NOCASE,
  "servername_dutch"       TEXT COLLATE NOCASE,
  "servername_ebaymotors"  TEXT COLLATE NOCASE,
  "servername_fees"        TEXT COLLATE NOCASE,
  "refurl"                 TEXT COLLATE NOCASE,
  "fontsizing"             YESNO INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE bulk (
  "username"          TEXT COLLATE NOCASE,
  "site"              TEXT COLLATE NOCASE,
  "bulkmail"          YESNO INTEGER NOT NULL DEFAULT 0,
  "printletter"       YESNO INTEGER NOT NULL DEFAULT 0,
  "sendcc"            YESNO INTEGER NOT NULL DEFAULT 0,
  "copyt_comments"    YESNO INTEGER NOT NULL DEFAULT 0,
  "emailtext_to"      TEXT COLLATE NOCASE,
  "emailtext_subject" TEXT COLLATE NOCASE,
  "emailtext"         MEMO TEXT COLLATE NOCASE,
  "feedback_comment"  TEXT COLLATE NOCASE
);
CREATE TABLE bulkstatuslog (
  "emailtext_subject" TEXT COLLATE NOCASE,
  "emailto"           TEXT COLLATE NOCASE,
  "auction_number"    TEXT COLLATE NOCASE,
  "auction_type"      TEXT COLLATE NOCASE,
  "status_log_note"   MEMO TEXT COLLATE NOCASE
);
CREATE TABLE Categories (
  "AppSiteId"        NUMBER REAL,
  "Categoryid"       NUMBER REAL,
  "CategoryLevel"    NUMBER REAL,
  "CategoryName"     TEXT COLLATE NOCASE,
  "CategoryParentId" NUMBER REAL,
  "LeafCategory"     YESNO INTEGER NOT NULL DEFAULT 0
);
CREATE TABLE Categoryupdate (
  "siteId"                  NUMBER REAL,
  "categories_last_updated" TEXT COLLATE NOCASE,
  "category_total"          NUMBER REAL
);

-- Lookups that every view and import makes.
CREATE INDEX seller_item ON seller ("Item");
CREATE INDEX seller_user ON seller ("username", "site");
CREATE INDEX seller_email ON seller ("Email");
-- The import finds a row posted from here by its title until the site has given it an item number.
CREATE INDEX seller_title ON seller ("Title");
CREATE INDEX bidder_item ON bidder ("Item");
CREATE INDEX bidder_user ON bidder ("username", "site");
CREATE INDEX categories_site ON Categories ("AppSiteId", "CategoryLevel");

INSERT INTO misc ("Ebay_hour_difference", "Ebay_minute_difference", "servername_import", "servername_import1",
                  "servername_desc", "servername_email", "servername_dutch", "servername_ebaymotors",
                  "servername_fees", "refurl", "fontsizing")
VALUES (0, 0, 'cgi6.ebay.com', 'cgi6.ebay.com', 'cgi.ebay.com', 'cgi.ebay.com', 'cgi.ebay.com',
        'cgi.ebaymotors.com', 'cgi3.ebay.com', 'http://www.lotwright.example/cgi-bin/ref.cgi?', 0);

INSERT INTO setup ("Userid", "countrylocation", "mailconnecttype", "taxrate")
VALUES ('No Userid Set', '0', 0, 0);

INSERT INTO seller ("Item", "Title", "username", "site", "pending", "template", "Completed", "Quantity",
                    "total_tax", "total_charges", "total_purchase")
VALUES (' ', 'Sample Auction', 'No Userid Set', 'eBay', -1, 0, 0, 1, 0, 0, 0);

INSERT INTO Categoryupdate ("siteId", "categories_last_updated", "category_total")
VALUES (0, '', 0), (2, '', 0), (3, '', 0), (15, '', 0), (16, '', 0), (23, '', 0), (71, '', 0), (77, '', 0),
       (101, '', 0), (104, '', 0), (123, '', 0), (146, '', 0), (186, '', 0), (193, '', 0), (196, '', 0);
COMMIT;
