#include "platform/answer_labels.h"

#include <algorithm>

#include "platform/text.h"

namespace zentor::platform {
namespace {

// The letters of three keyboards, key by key.
constexpr std::u32string_view kLatinKeys = U"qwertyuiopasdfghjklzxcvbnm";
constexpr std::u32string_view kRussianKeys = U"йцукенгшщзфывапролдячсмить";
constexpr std::u32string_view kKoreanKeys = U"ㅂㅈㄷㄱㅅㅛㅕㅑㅐㅔㅁㄴㅇㄹㅎㅗㅓㅏㅣㅋㅌㅊㅍㅠㅜㅡ";
static_assert(kRussianKeys.size() == kLatinKeys.size() && kKoreanKeys.size() == kLatinKeys.size());

// A small letter of ordinary width.
char32_t Folded(char32_t c) {
  constexpr char32_t kFullWidth = 0xFF00 - U' ';  // before the full-width forms of ASCII
  return LowerCase(c > 0xFF00 && c < 0xFF5F ? c - kFullWidth : c);
}

char32_t LatinKeyOf(char32_t c) {
  for (const std::u32string_view keyboard : {kRussianKeys, kKoreanKeys}) {
    const std::size_t key = keyboard.find(c);
    if (key != keyboard.npos) return kLatinKeys[key];
  }
  return 0;
}

}  // namespace

AnswerLabel LabelOf(std::u32string_view text, char32_t latin) {
  AnswerLabel label{std::u32string(text), std::u32string(text), 0, latin};
  std::u32string& word = label.word;
  const std::size_t open = word.find(U'[');
  if (open != word.npos && open + 2 < word.size() && word[open + 2] == U']') {
    label.key = word[open + 1];
    const bool own_word = open + 3 < word.size() && word[open + 3] == U' ';
    word = own_word ? word.substr(open + 4) : word.erase(open + 2, 1).erase(open, 1);
  } else if (!word.empty()) {
    label.key = word.front();
  }
  if (word.empty()) word = label.shown;
  label.key = Folded(label.key);
  return label;
}

std::optional<std::size_t> AnswerOfKey(std::span<const AnswerLabel> answers, char32_t typed) {
  const char32_t key = Folded(typed);
  const auto find = [&](const auto& is_meant) -> std::optional<std::size_t> {
    const auto found = std::find_if(answers.begin(), answers.end(), is_meant);
    if (found == answers.end()) return std::nullopt;
    return static_cast<std::size_t>(found - answers.begin());
  };
  auto answer = find([&](const AnswerLabel& a) { return a.key == key; });
  if (!answer)
    answer = find([&](const AnswerLabel& a) { return !a.word.empty() && Folded(a.word.front()) == key; });
  if (!answer) answer = find([&](const AnswerLabel& a) { return a.latin == key; });
  if (!answer) answer = find([&](const AnswerLabel& a) { return a.latin == LatinKeyOf(key); });
  return answer;
}

}  // namespace zentor::platform
