#include "apps/desktop/environment.h"

#include <unistd.h>

#include <QCoreApplication>

#include <cstdlib>
#include <string>

namespace lw::desktop {

void PrepareWebEngine() {
  if (geteuid() == 0) {
    const char* flags = std::getenv("QTWEBENGINE_CHROMIUM_FLAGS");
    std::string all = flags ? flags : "";
    if (all.find("--no-sandbox") == std::string::npos) {
      all = all.empty() ? "--no-sandbox" : all + " --no-sandbox";
      setenv("QTWEBENGINE_CHROMIUM_FLAGS", all.c_str(), 1);
    }
  }
  QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
}

}  // namespace lw::desktop
