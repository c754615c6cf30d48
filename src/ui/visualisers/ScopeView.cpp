#include "ui/visualisers/ScopeView.h"

#include "ui/theme/Theme.h"
#include "ui/visualisers/Light.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quorel {

namespace {

constexpr double kLineWidth = 1.3;
constexpr double kGlowRadius = 6; // beyond the line
constexpr float kGlow = 0.36F;    // strength beside the line
constexpr int kFine = 4;          // columns in which a pixel is smoothed

void moveTo(float& most, float value, bool down) {
    most = down ? std::max(most, value) : std::min(most, value);
}

} // namespace

void ScopeTrace::Spans::clear(std::size_t columns) {
    top.assign(columns, std::numeric_limits<float>::max());
    bottom.assign(columns, std::numeric_limits<float>::lowest());
}

void ScopeTrace::use(const SpriteKey& key) {
    if (key == key_) {
        return;
    }
    key_ = key;
    image_ = QImage(key.size, QImage::Format_ARGB32_Premultiplied);
    const QColor green = dimmed(Theme::green, dimming(key.brightness));
    for (std::size_t i = 0; i < colours_.size(); ++i) {
        colours_[i] =
            qPremultiply(qRgba(green.red(), green.green(), green.blue(), static_cast<int>(i)));
    }
}

void ScopeTrace::follow(std::span<const float> heights) {
    const auto columns = static_cast<std::size_t>(key_.size.width() * kFine);
    fine_.clear(columns);
    const auto last = static_cast<float>(heights.size() - 1);
    const auto touch = [this](std::size_t column, float height) {
        moveTo(fine_.top[column], height, false);
        moveTo(fine_.bottom[column], height, true);
    };
    for (std::size_t i = 0; i <= columns; ++i) { // where one column meets the next
        const float at = last * static_cast<float>(i) / static_cast<float>(columns);
        const auto point = std::min(static_cast<std::size_t>(at), heights.size() - 2);
        const float part = at - static_cast<float>(point);
        const float height = heights[point] + (heights[point + 1] - heights[point]) * part;
        touch(std::min(i, columns - 1), height);
        touch(i == 0 ? 0 : i - 1, height);
    }
    for (std::size_t i = 0; i < heights.size(); ++i) { // and the corners between
        touch(std::min(i * columns / (heights.size() - 1), columns - 1), heights[i]);
    }
    coarse_.clear(columns / kFine);
    for (std::size_t i = 0; i < columns; ++i) {
        moveTo(coarse_.top[i / kFine], fine_.top[i], false);
        moveTo(coarse_.bottom[i / kFine], fine_.bottom[i], true);
    }
}

/// What a round pen of `radius` pixels covers on its way along the spans.
void ScopeTrace::widen(const Spans& spans, double radius, double columnsPerPixel) {
    const auto columns = static_cast<int>(spans.top.size());
    wide_.clear(spans.top.size());
    const int reach = static_cast<int>(radius * columnsPerPixel);
    for (int shift = -reach; shift <= reach; ++shift) {
        const double aside = shift / columnsPerPixel;
        const auto height = static_cast<float>(std::sqrt(radius * radius - aside * aside));
        const int first = std::max(0, -shift);
        const int end = std::min(columns, columns - shift);
        const float* fromTop = spans.top.data() + shift;
        const float* fromBottom = spans.bottom.data() + shift;
        float* top = wide_.top.data();
        float* bottom = wide_.bottom.data();
        for (int i = first; i < end; ++i) {
            top[i] = std::min(top[i], fromTop[i] - height);
            bottom[i] = std::max(bottom[i], fromBottom[i] + height);
        }
    }
}

/// Adds light of that strength wherever the widened spans are; their ends may lie inside pixels.
void ScopeTrace::light(float weight, int columnsPerPixel) {
    const auto width = static_cast<std::size_t>(key_.size.width());
    const auto height = static_cast<float>(key_.size.height());
    const float part = weight / static_cast<float>(columnsPerPixel);
    for (std::size_t i = 0; i < wide_.top.size(); ++i) {
        float* column = changes_.data() + i / static_cast<std::size_t>(columnsPerPixel);
        const auto change = [&](float at, float by) {
            at = std::clamp(at, 0.0F, height);
            const auto row = static_cast<std::size_t>(at);
            const float inside = at - static_cast<float>(row);
            column[row * width] += by * (1 - inside);
            column[(row + 1) * width] += by * inside;
        };
        change(wide_.top[i], part);
        change(wide_.bottom[i], -part);
    }
}

void ScopeTrace::colour() {
    const auto width = static_cast<std::size_t>(key_.size.width());
    sum_.assign(width, 0.5F / 255); // rounds what is cut off below
    for (int y = 0; y < key_.size.height(); ++y) {
        const float* changes = changes_.data() + static_cast<std::size_t>(y) * width;
        auto* line = reinterpret_cast<QRgb*>(image_.scanLine(y));
        for (std::size_t x = 0; x < width; ++x) {
            sum_[x] += changes[x];
            const int strength = static_cast<int>(sum_[x] * 255);
            line[x] = colours_[static_cast<std::size_t>(std::clamp(strength, 0, 255))];
        }
    }
}

const QImage& ScopeTrace::draw(std::span<const float> heights) {
    const auto width = static_cast<std::size_t>(key_.size.width());
    const auto height = static_cast<std::size_t>(key_.size.height());
    changes_.assign(width * (height + 2), 0);
    follow(heights);

    // Beneath the line lie rings of light, each as strong as the falling glow asks for. As all of
    // them cover the line itself, the line adds what is left to full strength.
    const double half = kLineWidth / 2 * key_.unit;
    const double reach = kGlowRadius * key_.unit;
    const int rings = std::clamp(qRound(reach), 1, 12);
    const auto glowAt = [rings](int ring) {
        const float away = 1 - static_cast<float>(ring) / static_cast<float>(rings);
        return kGlow * away * away;
    };
    for (int ring = 0; ring < rings; ++ring) {
        widen(coarse_, half + reach * (ring + 1) / rings, 1);
        light(glowAt(ring) - glowAt(ring + 1), 1);
    }
    widen(fine_, half, kFine);
    light(1 - kGlow, kFine);
    colour();
    return image_;
}

double ScopeView::gain() const {
    double peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, static_cast<double>(std::abs(sample)));
    }
    return peak < 0.05 ? 4 : std::min(0.85 / peak, 4.0);
}

double ScopeView::depth(double sample, double gain) {
    // Unlike a clamp these let no NaN pass, which would be no place in the picture.
    return 0.5 - 0.5 * std::fmax(-1.0, std::fmin(gain * sample, 1.0)) * 0.92;
}

void ScopeView::paint(QPainter& painter, QSizeF size, double brightness, ScopeTrace& trace) const {
    const PixelFrame frame(painter, size);
    if (samples.size() < 2 || frame.size().isEmpty()) {
        return;
    }
    trace.use({frame.size(), frame.unit(), brightness});
    const double enlarged = gain();
    std::vector<float> heights(samples.size());
    std::ranges::transform(samples, heights.begin(), [&](float sample) {
        const double part = depth(static_cast<double>(sample), enlarged);
        return static_cast<float>(part * frame.size().height());
    });
    painter.drawImage(0, 0, trace.draw(heights));
}

} // namespace quorel
