#include "ui/tags/TagEditorView.h"

#include "player/PlayerController.h"
#include "ui/tags/GenreField.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace quorel {

namespace {

using Tags = ID3Writer::Tags;

const Track* findTrack(const PlayerController& player, const QUuid& id) {
    for (qsizetype i = 0; i < player.playlistCount(); ++i) {
        const Playlist& playlist = player.playlistAt(i);
        if (const auto row = player.rowOf(id, playlist.id))
            return &playlist.tracks.at(*row);
    }
    return nullptr;
}

Tags tagsOf(const Track& track) {
    return {.title = track.title,
            .artist = track.artist,
            .album = track.album.value_or(QString()),
            .albumArtist = track.albumArtist.value_or(QString()),
            .genre = track.genre.value_or(QString()),
            .year = track.year.value_or(QString()),
            .trackNumber = track.trackNumber,
            .trackTotal = track.trackTotal,
            .discNumber = track.discNumber,
            .discTotal = track.discTotal,
            .composer = track.composer.value_or(QString()),
            .comment = track.comment.value_or(QString())};
}

void setInk(QWidget& widget, const QColor& colour) {
    QPalette ink = widget.palette();
    ink.setColor(QPalette::WindowText, colour);
    widget.setPalette(ink);
}

QFont scaledFont(Theme::TextRole role) {
    QFont font = Theme::font(role);
    font.setPixelSize(px(font.pixelSize()));
    return font;
}

/// A line of small letters below the form.
QLabel* makeLine(const QString& text, const QColor& colour, QWidget* parent) {
    auto* const line = new QLabel(text, parent);
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    line->setFont(scaledFont(Theme::TextRole::Small));
    setInk(*line, colour);
    return line;
}

} // namespace

TagEditorView::TagEditorView(PlayerController& player, const QUuid& track, QWidget* parent)
    : QDialog(parent)
    , player_(player)
    , track_(track)
    , form_(new QGridLayout) {
    setWindowTitle(tr("Edit Tags"));
    setWindowModality(Qt::WindowModal);
    auto* const heading = new QLabel(tr("Edit Tags"), this);
    heading->setFont(scaledFont(Theme::TextRole::Title));
    addText(tr("Title"), new QLineEdit(this), &Tags::title);
    addText(tr("Artist"), new QLineEdit(this), &Tags::artist);
    addText(tr("Album Artist"), new QLineEdit(this), &Tags::albumArtist);
    addText(tr("Album"), new QLineEdit(this), &Tags::album);
    addText(tr("Composer"), new QLineEdit(this), &Tags::composer);
    addText(tr("Comment"), new QLineEdit(this), &Tags::comment);
    addText(tr("Year"), new QLineEdit(this), &Tags::year);
    addNumbers(tr("Track"), &Tags::trackNumber, tr("Track total"), &Tags::trackTotal);
    addNumbers(tr("Disc"), &Tags::discNumber, tr("Disc total"), &Tags::discTotal);
    addText(tr("Genre"), new GenreField(this), &Tags::genre);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(px(20), px(16), px(20), px(16));
    column->addWidget(heading);
    column->addSpacing(px(4));
    column->addLayout(form_);
    addFoot(*column);
    if (const Track* const known = findTrack(player, track))
        fill(tagsOf(*known));
    player.countFramesDropped(track, [view = QPointer(this)](qint64 frames) {
        if (view)
            view->tellDropped(frames);
    });
    error_->clear();
    setMinimumWidth(px(440));
    texts_.first().field->setFocus();
}

void TagEditorView::addRow(const QString& label, QWidget* content, QLineEdit* field) {
    const int row = form_->rowCount();
    auto* const title = new QLabel(label, this);
    title->setBuddy(field);
    setInk(*title, Theme::textDim);
    field->setAccessibleName(label);
    form_->addWidget(title, row, 0);
    form_->addWidget(content, row, 1);
}

void TagEditorView::addText(const QString& label, QLineEdit* field, QString Tags::*text) {
    addRow(label, field, field);
    connect(field, &QLineEdit::textChanged, this, &TagEditorView::edited);
    texts_.append({field, text});
}

QLineEdit* TagEditorView::makeNumber(const QString& name, Number Tags::*number) {
    // With a minus and many digits, for a file may hold such ones already.
    static const QRegularExpression kNumber(QStringLiteral("(-?[0-9]{1,19})?"));
    auto* const field = new QLineEdit(this);
    field->setAccessibleName(name);
    field->setValidator(new QRegularExpressionValidator(kNumber, field));
    field->setFixedWidth(px(64));
    connect(field, &QLineEdit::textChanged, this, &TagEditorView::edited);
    numbers_.append({field, number});
    return field;
}

void TagEditorView::addNumbers(const QString& label, Number Tags::*number, const QString& totalName,
                               Number Tags::*total) {
    auto* const pair = new QWidget(this);
    auto* const line = new QHBoxLayout(pair);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const slash = new QLabel(QStringLiteral("/"), pair);
    setInk(*slash, Theme::textDim);
    QLineEdit* const first = makeNumber(label, number);
    line->addWidget(first);
    line->addWidget(slash);
    line->addWidget(makeNumber(totalName, total));
    line->addStretch(1);
    addRow(label, pair, first);
}

void TagEditorView::addFoot(QBoxLayout& column) {
    auto* const lines = new QWidget(this);
    lines->setMinimumHeight(px(52)); // so that below the genre there is room for its list
    auto* const stack = new QVBoxLayout(lines);
    stack->setContentsMargins(0, 0, 0, 0);
    dropped_ = makeLine({}, Theme::textDim, this);
    dropped_->hide();
    stack->addWidget(dropped_);
    error_ = makeLine({}, Theme::danger, this);
    stack->addWidget(error_);
    stack->addStretch(1);
    column.addWidget(lines);
    column.addStretch(1);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Save, this);
    save_ = buttons->button(QDialogButtonBox::Save);
    save_->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &TagEditorView::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &TagEditorView::reject);
    column.addWidget(buttons);
}

void TagEditorView::tellDropped(qint64 frames) {
    if (frames == 0)
        return;
    dropped_->setText(frames == 1
                          ? tr("Saving removes 1 other entry of the old tag, such as a picture.")
                          : tr("Saving removes %1 other entries of the old tag, such as pictures, "
                               "lyrics or gains.")
                                .arg(frames));
    dropped_->show();
}

void TagEditorView::fill(const Tags& tags) {
    for (const auto& [field, text] : texts_) {
        field->setText(tags.*text);
        field->setCursorPosition(0);
    }
    for (const auto& [field, number] : numbers_)
        field->setText(tags.*number ? QString::number(*(tags.*number)) : QString());
}

ID3Writer::Tags TagEditorView::typed() const {
    Tags tags;
    for (const auto& [field, text] : texts_)
        tags.*text = field->text();
    for (const auto& [field, number] : numbers_)
        if (!field->text().isEmpty())
            tags.*number = field->text().toLongLong();
    return tags;
}

/// A lone minus, or too large a number, cannot be saved.
void TagEditorView::edited() {
    error_->clear();
    save_->setEnabled(std::all_of(numbers_.begin(), numbers_.end(), [](const auto& number) {
        bool isNumber = false;
        number.field->text().toLongLong(&isNumber);
        return isNumber || number.field->text().isEmpty();
    }));
}

void TagEditorView::accept() {
    if (!save_->isEnabled())
        return;
    if (const auto error = player_.saveTags(track_, typed()))
        error_->setText(error->description);
    else
        QDialog::accept();
}

} // namespace quorel
