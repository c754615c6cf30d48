#pragma once

#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"

#include <QAbstractButton>

namespace quorel {

/// A button of the front panel. Reached by Tab and pressed by Return and Enter, by Space too unless
/// told otherwise; a click leaves the focus where it is. Give it an accessible name.
class PanelButton : public QAbstractButton {
    Q_OBJECT

  public:
    /// Raised ones stand on the panel; quiet ones show their face only under the mouse.
    enum class Face { Raised, Quiet };

    explicit PanelButton(Face face, QWidget* parent = nullptr);

    /// Lit while what it stands for is on; a checked button is lit as well.
    bool isLit() const { return lit_ || isChecked(); }
    void setLit(bool lit);

    /// Where Space is a shortcut of the whole window, it should not press the focused button, too.
    void setSpacePresses(bool presses) { spacePresses_ = presses; }

    /// The room that the face takes, in base units; the shadow around it comes on top.
    void setFaceSize(QSizeF units);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    /// Paints what stands on the face; in base units.
    virtual void paintContent(QPainter& painter, const QRectF& face, const ControlState& state) = 0;
    /// The face's size when none was set, in base units.
    virtual QSizeF naturalFaceSize() const = 0;

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    const Face face_;
    bool lit_ = false;
    bool spacePresses_ = true;
    QSizeF faceSize_;
};

/// One symbol, such as those of the transport.
class TransportButton final : public PanelButton {
    Q_OBJECT

  public:
    explicit TransportButton(Icon icon, Face face = Face::Raised, QWidget* parent = nullptr);

    Icon icon() const { return icon_; }
    void setIcon(Icon icon);
    /// The symbol's side in base units; 20 unless set.
    void setIconSize(double units);

  protected:
    void paintContent(QPainter& painter, const QRectF& face, const ControlState& state) override;
    QSizeF naturalFaceSize() const override;

  private:
    Icon icon_;
    double iconSize_ = 20;
};

/// Symbols followed by text().
class TextIconButton final : public PanelButton {
    Q_OBJECT

  public:
    explicit TextIconButton(const QString& text, Face face = Face::Raised,
                            QWidget* parent = nullptr);

    const QList<Icon>& icons() const { return icons_; }
    void setIcons(const QList<Icon>& icons);

  protected:
    void paintContent(QPainter& painter, const QRectF& face, const ControlState& state) override;
    QSizeF naturalFaceSize() const override;

  private:
    double contentWidth() const;

    QList<Icon> icons_;
};

} // namespace quorel
