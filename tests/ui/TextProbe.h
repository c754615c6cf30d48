#pragma once

#include <gtest/gtest.h>

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <vector>

namespace quorel::test {

/// Every text that a widget and its children paint, where its ink is, and what of that is shown.
class TextProbe final : public QPaintDevice {
  public:
    struct Text {
        QString text;
        QRectF ink;
        QRectF shown;
    };

    explicit TextProbe(QWidget& widget)
        : widget_(widget) {
        widget.render(this);
    }

    /// None is cut off, and none is written over another.
    void expectReadable(const std::string& where) const {
        for (const Text& text : engine_.texts) {
            const QRectF letters = text.ink.adjusted(0.6, 0.6, -0.6, -0.6); // but for smooth edges
            EXPECT_TRUE(letters.isEmpty() || text.shown.contains(letters))
                << where << ": \"" << text.text.toStdString() << "\" is cut off";
            for (const Text& other : engine_.texts) {
                if (&other == &text)
                    break;
                if (other.text != text.text) { // raised letters are written twice
                    EXPECT_FALSE(other.ink.intersects(letters) && other.shown.intersects(letters))
                        << where << ": \"" << text.text.toStdString() << "\" is written over \""
                        << other.text.toStdString() << '"';
                }
            }
        }
    }
    const std::vector<Text>& texts() const { return engine_.texts; }

    QPaintEngine* paintEngine() const override { return &engine_; }

  protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
        case PdmWidth:
            return widget_.width();
        case PdmHeight:
            return widget_.height();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return qRound(devicePixelRatioFScale());
        default: // dots per inch and the like: all letters are in pixels
            return 96;
        }
    }

  private:
    class Engine final : public QPaintEngine {
      public:
        Engine()
            : QPaintEngine(AllFeatures) {}

        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState&) override {}
        void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
        void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
        void drawPath(const QPainterPath&) override {}
        Type type() const override { return User; }
        void drawTextItem(const QPointF& at, const QTextItem& item) override {
            const QTransform& to = painter()->deviceTransform();
            if (to.type() > QTransform::TxScale) // on a dial
                return;
            QPainterPath letters;
            letters.addText(at, item.font(), item.text());
            QRectF shown = systemClip().boundingRect();
            if (painter()->hasClipping())
                shown &= to.mapRect(painter()->clipBoundingRect());
            texts.push_back({item.text(), to.mapRect(letters.boundingRect()), shown});
        }

        std::vector<Text> texts;
    };

    QWidget& widget_;
    mutable Engine engine_;
};

} // namespace quorel::test
