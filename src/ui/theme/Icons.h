#pragma once

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <span>

namespace quorel {

/// Every symbol of the interface, drawn on one grid of 24 units (resources/icons).
enum class Icon {
    Previous,
    Play,
    Pause,
    Stop,
    Next,
    Speaker,
    SpeakerMuted,
    ModeNormal,
    ModeStopAfter,
    RepeatOne,
    RepeatAll,
    Shuffle,
    Equalizer,
    Gear,
    Playlist,
    Plus,
    Load,
    Save,
    Remove,
    Undo,
    Search,
    Clear,
    Checkmark,
    PlusCircle,
    Trash,
    Pencil,
    ArrowLeft,
    ArrowRight,
    Handle,
    Update,
    Ok,
    Close,
    Warning,
    Pin,
    ChevronDown,
    PlayCircle,
    Waveform,
    Dial,
    Loudspeaker,
    WindowFrame,
};

std::span<const Icon> allIcons();
/// The name of its file, such as "repeat-all".
QString iconName(Icon icon);

/// A square of `size` device-independent pixels in one colour. Kept in QPixmapCache. Main thread.
QPixmap iconPixmap(Icon icon, double size, const QColor& colour, double devicePixelRatio);

/// Paints the symbol into the square, on whole pixels of the device at any scale.
void drawIcon(QPainter& painter, Icon icon, const QRectF& square, const QColor& colour);
/// The same above its shadow, or, lit, within its own light.
void drawRaisedIcon(QPainter& painter, Icon icon, const QRectF& square, const QColor& colour,
                    bool lit);

} // namespace quorel
