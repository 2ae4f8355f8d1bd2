#!/usr/bin/env bash
# Installs every Debian package Lotwright needs to build, test and run. Safe to run again: packages
# already present are left alone and apt is only asked when something is missing.
set -euo pipefail

packages=(
  # toolchain
  g++ cmake ninja-build pkg-config clang libclang-rt-14-dev clang-format
  # libraries
  libsqlite3-dev sqlite3 libicu-dev libcurl4-openssl-dev libxml2-dev libxslt1-dev
  # report layout and exports: PDF, spreadsheet, pictures
  libhpdf-dev libxlsxwriter-dev libstb-dev
  # the scanner (optional at build time; SANE's test devices serve the tests)
  libsane-dev libsane1
  # the desktop program
  qt6-base-dev qt6-webengine-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev googletest libbenchmark-dev python3
  # mail: the user's mail program is reached through xdg-utils; the tests run a local SMTP server
  xdg-utils python3-aiosmtpd
  # reading report exports back: the PDF's text, the spreadsheet's parts
  poppler-utils unzip
  # the loopback FTP server of the upload and update check tests
  python3-pyftpdlib
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
