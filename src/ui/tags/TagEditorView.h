#pragma once

#include "media/tags/ID3Writer.h"

#include <QDialog>
#include <QUuid>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace quorel {

class PlayerController;

/// A sheet to edit the tags of one track's file. Save (or Return) writes them and closes the sheet;
/// where they cannot be written it stays open and says why. Cancel (or Escape) leaves all as it is.
class TagEditorView final : public QDialog {
    Q_OBJECT

  public:
    /// The controller outlives the sheet. An unknown track has empty fields.
    TagEditorView(PlayerController& player, const QUuid& track, QWidget* parent);

    void accept() override;

  private:
    using Tags = ID3Writer::Tags;
    using Number = std::optional<qint64>;

    void addRow(const QString& label, QWidget* content, QLineEdit* field);
    void addText(const QString& label, QLineEdit* field, QString Tags::*text);
    QLineEdit* makeNumber(const QString& name, Number Tags::*number);
    void addNumbers(const QString& label, Number Tags::*number, const QString& totalName,
                    Number Tags::*total);
    void addFoot(QBoxLayout& column);
    void tellDropped(qint64 frames);
    void fill(const Tags& tags);
    Tags typed() const;
    void edited();

    template <class Value>
    struct Bound {
        QLineEdit* field;
        Value Tags::*value;
    };

    PlayerController& player_;
    const QUuid track_;
    QGridLayout* const form_;
    QList<Bound<QString>> texts_;
    QList<Bound<Number>> numbers_;
    QLabel* dropped_ = nullptr;
    QLabel* error_ = nullptr;
    QPushButton* save_ = nullptr;
};

} // namespace quorel
