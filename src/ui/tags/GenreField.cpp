#include "ui/tags/GenreField.h"

#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QKeyEvent>
#include <QListWidget>

namespace quorel {

/// Looks like a menu below the field.
class GenreField::Suggestions final : public QListWidget {
  public:
    explicit Suggestions(QWidget* parent)
        : QListWidget(parent) {
        setAccessibleName(GenreField::tr("Genre suggestions"));
        setFocusPolicy(Qt::NoFocus); // typing goes on meanwhile
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // there are four at most
        setMouseTracking(true);
        setFrameStyle(QFrame::Box | QFrame::Plain);
        setViewportMargins(px(3), px(2), px(3), px(2));
        QPalette colours = palette();
        colours.setColor(QPalette::Base, Theme::steel.darker(150));
        colours.setColor(QPalette::Window, Theme::steel.darker(150));
        colours.setColor(QPalette::WindowText, Theme::steelLight);
        colours.setColor(QPalette::Highlight, Theme::faded(Theme::green, 0.18));
        setPalette(colours);
        setAutoFillBackground(true); // beside the viewport, too
        hide();
    }

    /// High enough for all of them.
    int fullHeight() const {
        const QMargins inside = viewportMargins();
        return sizeHintForRow(0) * count() + 2 * frameWidth() + inside.top() + inside.bottom();
    }
};

const QStringList& knownGenres() {
    static const QStringList genres =
        QStringLiteral("Pop,Rock,Hip-Hop,R&B,Jazz,Classical,Electronic,Dance,Country,Folk,Blues,"
                       "Reggae,Metal,Punk,Alternative,Indie,Soul,Funk,Gospel,Latin,World,Ambient,"
                       "House,Techno,Trance,Drum & Bass,Lo-Fi,Soundtrack,Klezmer,Hasidic,Jewish,"
                       "Mizrahi,Sephardic,Plainchant,New Age,Children's,Comedy,Spoken Word,K-Pop,"
                       "J-Pop")
            .split(u',');
    return genres;
}

QStringList matchingGenres(const QString& typed) {
    QStringList matches;
    if (typed.isEmpty())
        return matches;
    for (const QString& genre : knownGenres()) {
        if (genre.startsWith(typed, Qt::CaseInsensitive) && genre.size() != typed.size())
            matches += genre;
    }
    return matches;
}

GenreField::GenreField(QWidget* parent)
    : QLineEdit(parent)
    , list_(new Suggestions(parent->window())) {
    connect(list_, &QListWidget::itemEntered, list_,
            [this](QListWidgetItem* item) { list_->setCurrentItem(item); });
    connect(list_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        list_->setCurrentItem(item);
        takeCurrent();
    });
    connect(this, &QLineEdit::textEdited, this, &GenreField::suggest);
}

QStringList GenreField::suggestions() const {
    QStringList texts;
    for (int row = 0; !list_->isHidden() && row < list_->count(); ++row)
        texts += list_->item(row)->text();
    return texts;
}

void GenreField::suggest() {
    const QStringList matches = matchingGenres(text());
    list_->clear();
    list_->addItems(matches);
    list_->setCurrentRow(-1);
    if (!matches.isEmpty())
        place();
    list_->setVisible(!matches.isEmpty());
    list_->raise();
}

/// Just below the field, as far down as the window reaches.
void GenreField::place() {
    const QPoint below = mapTo(window(), QPoint(0, height()));
    list_->setGeometry(below.x(), below.y(), width(),
                       std::min(list_->fullHeight(), window()->height() - below.y()));
}

void GenreField::step(int by) {
    const int rows = list_->count();
    const int row = list_->currentRow();
    list_->setCurrentRow(row < 0 ? (by > 0 ? 0 : rows - 1) : (row + by + rows) % rows);
}

bool GenreField::takeCurrent() {
    QListWidgetItem* const chosen = list_->isHidden() ? nullptr : list_->currentItem();
    if (chosen)
        setText(chosen->text());
    list_->hide();
    return chosen != nullptr;
}

bool GenreField::event(QEvent* event) {
    // Tab takes over what is chosen, and goes on to the next control.
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Tab)
        takeCurrent();
    return QLineEdit::event(event);
}

void GenreField::keyPressEvent(QKeyEvent* event) {
    const bool open = !list_->isHidden();
    switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Up:
        if (open)
            step(event->key() == Qt::Key_Down ? 1 : -1);
        else
            suggest();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (takeCurrent())
            return;
        break;
    case Qt::Key_Escape:
        if (open) {
            list_->hide();
            return;
        }
        break;
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

void GenreField::focusOutEvent(QFocusEvent* event) {
    list_->hide();
    QLineEdit::focusOutEvent(event);
}

} // namespace quorel
