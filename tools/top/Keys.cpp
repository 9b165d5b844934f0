// The keys of zynphone top.
#include "tools/top/Keys.h"

#include <algorithm>
#include <limits>

namespace zyn::tool {
namespace {

constexpr struct
{
    std::string_view bytes;
    Key key;
} kKeys[] = {
    // With and without the keypad in its application mode; the first and the last also as older terminals send them.
    {"\033[A", Key::Up},   {"\033OA", Key::Up},      {"\033[B", Key::Down},
    {"\033OB", Key::Down}, {"\033[5~", Key::PageUp}, {"\033[H", Key::Home},
    {"\033OH", Key::Home}, {"\033[1~", Key::Home},   {"\033[6~", Key::PageDown},
    {"\033[F", Key::End},  {"\033OF", Key::End},     {"\033[4~", Key::End},
    {"k", Key::Up},        {"j", Key::Down},         {" ", Key::PageDown},
    {"q", Key::Quit},
};

/// The heading and the foot, and a line that both pages show.
constexpr int kNoPage = 3;

} // namespace

std::vector<Key> keysIn(std::string_view input)
{
    std::vector<Key> keys;
    while (!input.empty()) {
        const auto* const known =
            std::ranges::find_if(kKeys, [&](const auto& row) { return input.starts_with(row.bytes); });
        if (known != std::end(kKeys))
            keys.push_back(known->key);
        input.remove_prefix(known != std::end(kKeys) ? known->bytes.size() : 1);
    }
    return keys;
}

int scrolledBy(Key key, int scrolled, int rows)
{
    const int page = std::max(rows - kNoPage, 1);
    switch (key) {
    case Key::Up:
        return std::max(scrolled - 1, 0);
    case Key::Down:
        return scrolled + 1;
    case Key::PageUp:
        return std::max(scrolled - page, 0);
    case Key::PageDown:
        return scrolled + page;
    case Key::Home:
        return 0;
    case Key::End:
        return std::numeric_limits<int>::max();
    case Key::Quit:
        break;
    }
    return scrolled;
}

} // namespace zyn::tool
