#pragma once

#include <QCollator>
#include <QStringList>
#include <stop_token>

namespace quorel {

/// The order in which a file browser lists names: that of the user's language, capitals or not,
/// runs of digits by their value ("Track 2" before "Track 10"). One thread at a time.
class NaturalOrder {
  public:
    explicit NaturalOrder(const QLocale& locale = QCollator().locale());

    /// Texts that compare equal, such as "a" and "A", keep their order. What is done with the list
    /// when it is stopped is unspecified but harmless.
    void sort(QStringList& texts, const std::stop_token& stop = {}) const;

  private:
    QCollator collator_;
};

} // namespace quorel
