#pragma once

#include <QFileDialog>

class QListView;

namespace quorel {

/// Chooses files and folders, several at once. A double click enters a folder; the button takes
/// what is selected, folders too.
class FilesAndFoldersDialog final : public QFileDialog {
    Q_OBJECT

  public:
    FilesAndFoldersDialog(QWidget* parent, const QString& title, const QString& folder);

    /// What was chosen, absolute.
    const QStringList& picked() const { return picked_; }

    void accept() override;

  private:
    QStringList selectedPaths() const;
    void showSelection();

    QListView* const list_;
    bool hasTyped_ = false; ///< what stands in the name field counts, not the selection
    QStringList picked_;
};

} // namespace quorel
