#pragma once

#include <QLineEdit>
#include <QStringList>

namespace quorel {

/// The genres that a GenreField offers, in their order.
const QStringList& knownGenres();
/// Those that begin with the text, whatever the case, in their order; not the one that is the text.
/// None for an empty text.
QStringList matchingGenres(const QString& typed);

/// A line for a genre, with a list of matching ones below it while it is typed into. The arrows
/// choose from the list, Return or a click takes a genre over, Escape closes the list.
class GenreField final : public QLineEdit {
    Q_OBJECT

  public:
    explicit GenreField(QWidget* parent);

    /// What the list offers just now; empty while it is closed.
    QStringList suggestions() const;

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    class Suggestions;

    void suggest();
    void place();
    void step(int by);
    bool takeCurrent();

    Suggestions* const list_; ///< of the window, above its other controls
};

} // namespace quorel
