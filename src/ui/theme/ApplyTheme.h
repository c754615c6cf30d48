#pragma once

class QApplication;

namespace quorel {

/// Gives the program its look: style, palette, fonts and focus rings, always dark. Once, at the
/// start; a font family pinned on the application before is kept.
void applyTheme(QApplication& application);

/// The whole interface in another size, 0.5..1.5: application font, style and layouts of every
/// widget. Windows keep their sizes. After applyTheme().
void setInterfaceScale(double scale);

} // namespace quorel
