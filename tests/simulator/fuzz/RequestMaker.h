#ifndef BREVAN_TESTS_SIMULATOR_FUZZ_REQUESTMAKER_H
#define BREVAN_TESTS_SIMULATOR_FUZZ_REQUESTMAKER_H

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace brevan::sim::test {

/// The same numbers for the same seed on every machine.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_engine(seed) {}
    std::size_t below(std::size_t sides) { return static_cast<std::size_t>(m_engine() % sides); }
    bool oneIn(std::size_t sides) { return below(sides) == 0; }
    template <typename List>
    const auto& from(const List& list)
    {
        return list[below(std::size(list))];
    }

private:
    std::mt19937_64 m_engine;
};

/// A request in pieces, so that a piece can be made wrong and all others stay right.
struct Pieces {
    std::string method;
    std::string path;
    std::vector<std::string> query;                         ///< "filter=NAME:a"
    std::vector<std::pair<std::string, std::string>> body;  ///< key, and the value as JSON
    std::vector<std::string> headers;
};

/// What makes the first objects of a new array, for others to name.
std::vector<Pieces> requestsToFurnish();

/// A request that the array could carry out, if the objects that it names are there; names and IDs come from small sets, so that
/// often they are.
Pieces rightRequest(Dice& dice);

/// Makes one piece wrong, or none.
void mutate(Pieces& pieces, Dice& dice);

/// As it goes over the wire.
std::string requestBytes(const Pieces& pieces, Dice& dice);

/// Changes, adds, removes and doubles bytes at random places.
void mutate(std::string& bytes, Dice& dice);

}  // namespace brevan::sim::test

#endif
