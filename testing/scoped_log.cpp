// See scoped_log.h.
#include "testing/scoped_log.h"

#include <algorithm>

namespace Orvane::testing {

ScopedLog::ScopedLog(unsigned level) : previousLevel_(Log::GetMinLogLevel()), journal_(std::make_shared<Journal>()) {
  Log::SetMinLogLevel(level);
  Log::SetSink([journal = journal_](const Log::Record& record) {
    const std::lock_guard lock(journal->mutex);
    journal->records.push_back(record);
  });
}

ScopedLog::~ScopedLog() {
  Log::SetSink({});
  Log::SetMinLogLevel(previousLevel_);
}

std::vector<Log::Record> ScopedLog::Records() const {
  const std::lock_guard lock(journal_->mutex);
  return journal_->records;
}

std::vector<std::string> ScopedLog::Texts(unsigned level) const {
  std::vector<std::string> texts;
  for (const Log::Record& record : Records()) {
    if (record.level == level) texts.push_back(record.text);
  }
  return texts;
}

bool ScopedLog::Has(unsigned level, const std::string& text) const {
  const std::vector<std::string> texts = Texts(level);
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace Orvane::testing
