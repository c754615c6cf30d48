// What the meters show of known sounds: bench_meters [PICTURE.png]
//
// Plays pink noise and a sine through the engine as fast as possible, prints the mean VU, the peak,
// and the highest, mean and lowest height of each spectrum bar over ten seconds, and draws the
// bars.
#include "audio/OfflineRenderer.h"
#include "support/MadeFile.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <numeric>
#include <random>

using namespace quorel;

namespace {

constexpr int kRate = 48000;
constexpr int kSeconds = 12;
constexpr std::size_t kBars = std::tuple_size_v<decltype(MeterValues::spectrumBars)>;

/// Of the same level in every octave: a sum of noises, each renewed half as often as the one before
/// it. The limiter's pre-gain is made good, so that the meters get what is named.
test::Samples pinkNoise(double rmsDb) {
    std::mt19937 random(1);
    std::normal_distribution<double> noise;
    std::array<double, 16> rows{};
    std::vector<double> sound;
    double squares = 0;
    for (unsigned n = 1; n <= kSeconds * kRate; ++n) {
        rows[std::min<std::size_t>(static_cast<std::size_t>(std::countr_zero(n)), 15)] =
            noise(random);
        sound.push_back(std::accumulate(rows.begin(), rows.end(), noise(random)));
        squares += sound.back() * sound.back();
    }
    const double rms = std::sqrt(squares / static_cast<double>(sound.size()));
    const double gain = std::pow(10, (rmsDb + 0.8) / 20) / rms;
    test::Samples samples;
    for (const double value : sound) {
        samples.insert(samples.end(), 2, static_cast<float>(gain * value));
    }
    return samples;
}

test::Samples sine(double hertz, double rmsDb) {
    return test::tone(kSeconds * kRate, hertz, kRate,
                      std::numbers::sqrt2 * std::pow(10, (rmsDb + 0.8) / 20));
}

struct Shown {
    QString title;
    std::array<float, kBars> least{}, mean{}, most{};
    double vuDb = -30;
    double peakDb = -30;
};

Shown show(const QString& title, test::Samples samples) {
    OfflineRenderer renderer({kRate, rt::ChannelLayout::usual(2)});
    TrackToPlay track;
    track.file = std::make_shared<test::MadeFile>(kRate, 2, std::move(samples));
    renderer.engine().load(track, 0);
    std::vector<float> heard;
    renderer.render(kRate, heard);
    Shown shown{title};
    shown.least.fill(1);
    constexpr int kTicks = 150;
    for (int tick = 0; tick < kTicks; ++tick) {
        heard.clear();
        renderer.render(kRate / 15, heard);
        const MeterValues& meters = renderer.engine().meters();
        for (std::size_t i = 0; i < kBars; ++i) {
            shown.least[i] = std::min(shown.least[i], meters.spectrumBars[i]);
            shown.most[i] = std::max(shown.most[i], meters.spectrumBars[i]);
            shown.mean[i] += meters.spectrumBars[i] / kTicks;
        }
        shown.vuDb = std::max(shown.vuDb, meters.vuLeftDb);
        shown.peakDb = std::max(shown.peakDb, meters.peakLeftDb);
    }
    return shown;
}

void print(const Shown& shown) {
    std::printf("%s: VU %.2f, peak %.2f dBFS\n", qPrintable(shown.title), shown.vuDb, shown.peakDb);
    for (const auto& [name, heights] :
         {std::pair{"  most ", shown.most}, {"  mean ", shown.mean}, {"  least", shown.least}}) {
        std::printf("%s", name);
        for (const float height : heights) {
            std::printf(" %.2f", static_cast<double>(height));
        }
        std::printf("\n");
    }
}

/// Bars up to the mean, with a line from the least to the most; grid lines at 0, 0.5 and 1.
void draw(QPainter& painter, const QRectF& field, const Shown& shown) {
    painter.setPen(QColor(0x9a, 0xa3, 0xad));
    painter.drawText(field.topLeft() + QPointF(0, -10), shown.title);
    const auto y = [&field](float height) {
        return field.bottom() - static_cast<double>(height) * field.height();
    };
    for (const float height : {0.0F, 0.5F, 1.0F}) {
        painter.setPen(QColor(0x3a, 0x41, 0x49));
        painter.drawLine(QPointF(field.left(), y(height)), QPointF(field.right(), y(height)));
        painter.setPen(QColor(0x9a, 0xa3, 0xad));
        painter.drawText(QPointF(field.left() - 30, y(height) + 5), QString::number(height));
    }
    const double step = field.width() / static_cast<double>(kBars);
    for (std::size_t i = 0; i < kBars; ++i) {
        const double left = field.left() + step * static_cast<double>(i);
        painter.fillRect(
            QRectF(QPointF(left + 2, y(shown.mean[i])), QPointF(left + step - 2, field.bottom())),
            QColor(0x4c, 0xc3, 0x8a));
        painter.setPen(QPen(QColor(0xff, 0xd1, 0x66), 2));
        painter.drawLine(QPointF(left + step / 2, y(shown.least[i])),
                         QPointF(left + step / 2, y(shown.most[i])));
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const Shown fields[] = {
        show(QStringLiteral("Pink noise, -14 dBFS RMS"), pinkNoise(-14)),
        show(QStringLiteral("Sine of 1 kHz, -14 dBFS RMS"), sine(1000, -14)),
    };
    QImage image(940, 320, QImage::Format_RGB32);
    image.fill(QColor(0x14, 0x17, 0x1a));
    QPainter painter(&image);
    QRectF field(50, 50, 400, 240);
    for (const Shown& shown : fields) {
        print(shown);
        draw(painter, field, shown);
        field.translate(460, 0);
    }
    painter.end();
    // The scripts hand every benchmark program the same options.
    const QString path = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    if (path.endsWith(QLatin1String(".png")) && !image.save(path)) {
        std::fprintf(stderr, "%s cannot be written\n", argv[1]);
        return 1;
    }
    return 0;
}
