// What the process must settle before it makes its QApplication: the web views' sandbox, and the GL
// contexts they share.
#pragma once

namespace lw::desktop {

// Qt WebEngine's sandbox does not run as root: there, and only there, it is switched off.
void PrepareWebEngine();

}  // namespace lw::desktop
