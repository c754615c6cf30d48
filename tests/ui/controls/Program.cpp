#include "ui/theme/ApplyTheme.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace {

/// The program around the controls, without a screen.
class Program final : public testing::Environment {
  public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QUOREL_REDUCED_MOTION", "0");
        application_ = std::make_unique<QApplication>(count_, arguments_);
        quorel::applyTheme(*application_);
    }
    void TearDown() override { application_.reset(); }

  private:
    int count_ = 1;
    char name_[14] = "test_controls";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QApplication> application_;
};

const auto* const kProgram = testing::AddGlobalTestEnvironment(new Program);

} // namespace
