#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrel {

/// What the checks that run at the same time may take together, and what they take.
struct MemoryBudget {
    std::size_t limit; ///< bytes
    std::atomic<std::ptrdiff_t> taken = 0;
    std::atomic<bool> only_first = false; ///< the system has too little: the check that goes first gets what there is
};

/// Why a check that runs under a limit comes to no end.
enum class MemoryEnd : std::uint8_t {
    none,
    over,    ///< it needs more than the limit for itself
    crowded, ///< the others leave it too little
    refused  ///< the system has too little, and it does not go first
};

/// The memory of one check, which one thread takes and gives back. A check that goes first gets all that it asks for up
/// to the limit; the others get what is left, and have to make room when it needs more.
class MemoryAccount {
public:
    /// An account of the file at a `place`; it goes first from when `turn` is its place.
    MemoryAccount(MemoryBudget& budget, const std::atomic<std::size_t>& turn, std::size_t place)
        : budget_(budget), turn_(turn), place_(place) {}
    MemoryAccount(const MemoryAccount&) = delete;
    MemoryAccount& operator=(const MemoryAccount&) = delete;
    ~MemoryAccount();

    /// Counts memory that is taken. False when it must not be: then it is not counted, and `end` tells why.
    [[nodiscard]] bool take(std::size_t size);
    void giveBack(std::size_t size);

    /// The system has refused memory, of which the other checks may have too much. True when it is worth asking again:
    /// the others have ended, or have had some time to.
    [[nodiscard]] bool awaitOthers();

    /// What the check was refused memory for, in spite of which it may have gone on.
    [[nodiscard]] MemoryEnd end() const { return end_; }
    /// Ends the check, which is to be done again when it goes first.
    void makeRoom() { end_ = MemoryEnd::crowded; }

private:
    [[nodiscard]] bool goesFirst() const { return turn_.load(std::memory_order_acquire) == place_; }

    MemoryBudget& budget_;
    const std::atomic<std::size_t>& turn_;
    std::size_t place_;
    bool others_ended_ = false; // for its sake
    std::ptrdiff_t own_ = 0;
    MemoryEnd end_ = MemoryEnd::none;
};

/// Has the memory that the calling thread takes from now on counted by an account, or by none; returns the one before.
using ChargeTo = MemoryAccount* (*)(MemoryAccount* account);

/// How memory is counted. It is the program's: only its operator new sees all of it.
struct MemoryCounting {
    ChargeTo charge_to;
    void (*begin)(); ///< ahead of the first account
};

/// Where nothing is counted.
inline MemoryAccount* chargeNone(MemoryAccount* /*account*/) { return nullptr; }

/// The limit of a call.
struct MemoryLimit {
    std::size_t bytes;
    std::string_view shown; ///< as it was given
    ChargeTo charge_to;
};

/// While it lasts, another account counts what the thread takes.
class Charged {
public:
    Charged(ChargeTo charge_to, MemoryAccount* account) : charge_to_(charge_to), before_(charge_to(account)) {}
    Charged(const Charged&) = delete;
    Charged& operator=(const Charged&) = delete;
    ~Charged() { charge_to_(before_); }

    /// The account that counts again afterwards; null for none.
    [[nodiscard]] MemoryAccount* before() const { return before_; }

private:
    ChargeTo charge_to_;
    MemoryAccount* before_;
};

} // namespace kestrel
