#include "ui/theme/Theme.h"

#include <QGuiApplication>

namespace quorel::Theme {

namespace {
struct Face {
    int size; // base units
    QFont::Weight weight;
    double spacing; // between letters, base units
};

Face faceOf(TextRole role) {
    switch (role) {
    case TextRole::Title:
        return {15, QFont::Medium, 0};
    case TextRole::Body:
        return {13, QFont::Normal, 0};
    case TextRole::Strong:
        return {13, QFont::DemiBold, 0};
    case TextRole::Small:
        return {11, QFont::Normal, 0};
    case TextRole::Indicator:
        break;
    }
    return {9, QFont::DemiBold, 1};
}
} // namespace

QFont font(TextRole role) {
    const Face face = faceOf(role);
    QFont font;
    font.setFamilies(QGuiApplication::font().families());
    font.setPixelSize(face.size);
    font.setWeight(face.weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    if (face.spacing > 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, face.spacing);
    return font;
}

} // namespace quorel::Theme
