#include "publisher/findings.hpp"

namespace publisher {

void Findings::Problem(const std::string& text) {
  const std::lock_guard lock(mutex_);
  problems_.insert(text);
}

void Findings::Warning(const std::string& text) {
  const std::lock_guard lock(mutex_);
  warnings_.insert(text);
}

void Findings::Print(Console& console) const {
  for (const std::string& warning : warnings_) console.out << "warning: " << warning << "\n";
  for (const std::string& problem : problems_) console.out << "problem: " << problem << "\n";
}

std::string Findings::WithoutName(const std::string& text, const std::string& name) {
  return !name.empty() && text.starts_with(name + ": ") ? text.substr(name.size() + 2) : text;
}

}  // namespace publisher
