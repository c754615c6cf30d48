#pragma once

namespace quorel::rt {

/// The timetable of a value that walks to a target in equal steps, each a glide of equal length.
/// Only says when a step begins and where it leads; the owner glides there in its own terms.
class StepRamp {
  public:
    StepRamp() = default;
    explicit StepRamp(float value)
        : from_(value)
        , to_(value)
        , stepFrom_(value)
        , stepTo_(value) {}

    void snap(float value) noexcept { *this = StepRamp(value); }

    /// Walks from the present value in `steps` steps of `framesPerStep`, both at least 1.
    void start(float target, int steps, int framesPerStep) noexcept {
        const float present = value();
        *this = StepRamp(present);
        to_ = target;
        steps_ = steps;
        framesPerStep_ = framesPerStep;
        beginStep();
    }

    bool running() const noexcept { return framesLeft_ > 0; }
    int framesPerStep() const noexcept { return framesPerStep_; }

    /// Frames to the end of the present step; 0 at rest.
    int framesLeft() const noexcept { return framesLeft_; }

    /// The value at the end of the present step.
    float stepTarget() const noexcept { return stepTo_; }
    float target() const noexcept { return to_; }

    /// The value reached, linear within a step.
    float value() const noexcept {
        if (!running())
            return to_;
        const float ahead = static_cast<float>(framesLeft_) / static_cast<float>(framesPerStep_);
        return stepTo_ - (stepTo_ - stepFrom_) * ahead;
    }

    /// Lets at most framesLeft() frames pass. True when a step ended; then either the next one has
    /// begun or the ramp is over.
    bool advance(int frames) noexcept {
        if (!running())
            return false;
        framesLeft_ -= frames;
        if (framesLeft_ > 0)
            return false;
        if (step_ < steps_)
            beginStep();
        return true;
    }

  private:
    void beginStep() noexcept {
        ++step_;
        const float t = static_cast<float>(step_) / static_cast<float>(steps_);
        stepFrom_ = stepTo_;
        stepTo_ = step_ < steps_ ? from_ + (to_ - from_) * t : to_;
        framesLeft_ = framesPerStep_;
    }

    float from_ = 0;
    float to_ = 0;
    float stepFrom_ = 0;
    float stepTo_ = 0;
    int step_ = 0;
    int steps_ = 0;
    int framesPerStep_ = 0;
    int framesLeft_ = 0;
};

} // namespace quorel::rt
