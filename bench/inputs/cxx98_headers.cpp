// Includes the common headers of the C++98 standard library and uses a few of them.
#include <algorithm>
#include <bitset>
#include <cassert>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <exception>
#include <fstream>
#include <functional>
#include <iomanip>
#include <ios>
#include <iosfwd>
#include <iostream>
#include <istream>
#include <iterator>
#include <limits>
#include <list>
#include <locale>
#include <map>
#include <memory>
#include <new>
#include <numeric>
#include <ostream>
#include <queue>
#include <set>
#include <sstream>
#include <stack>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <typeinfo>
#include <utility>
#include <valarray>
#include <vector>

namespace {

struct Entry {
    std::string name;
    int count;
    bool operator<(const Entry& other) const { return count < other.count; }
};

std::map<std::string, int> countWords(std::istream& in)
{
    std::map<std::string, int> counts;
    std::string word;
    while (in >> word)
        ++counts[word];
    return counts;
}

}  // namespace

int main()
{
    std::istringstream text("a b a c b a");
    std::map<std::string, int> counts = countWords(text);
    std::vector<Entry> entries;
    for (std::map<std::string, int>::const_iterator it = counts.begin(); it != counts.end(); ++it) {
        Entry e = { it->first, it->second };
        entries.push_back(e);
    }
    std::sort(entries.begin(), entries.end());
    std::cout << std::setw(4) << entries.back().name << ' ' << entries.back().count << std::endl;
    return entries.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}
