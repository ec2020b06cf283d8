#include "main/checking.hpp"

#include "findings/finding_log.hpp"
#include "ibis/run.hpp"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

namespace kestrel {

namespace {

/// A file that is checked, or was and waits for its turn.
struct Job {
    std::size_t place; ///< in the list
    FindingLog log{};  ///< what could not be reported yet
    std::string last_printed{};
    FileOutcome outcome{};
    std::vector<std::string> files{};   ///< all that were read, where a baseline wants to know
    std::unique_ptr<ReportPart> part{}; ///< of the report, where one is wanted

    [[nodiscard]] std::size_t size() const {
        return sizeof *this + log.size() + last_printed.capacity() + (part ? part->size() : 0);
    }
};

/// Thrown to end a check whose results nobody gets any more.
struct Stopped {};

/// Thrown to end a check that is done again when its file has its turn.
struct Crowded {};

/// The check of a list of files. Whose turn it is owns the report: the thread that checks the first file that is not
/// done, and for files that wait the thread that was before them.
class Checking {
public:
    Checking(const CheckOutputs& outputs, const FileList& files) : outputs_(outputs), files_(files) {
        if (outputs.memory == nullptr) return;
        charge_to_ = outputs.memory->charge_to;
        budget_.limit = outputs.memory->bytes;
        over_limit_.append("More memory than --max-memory=").append(outputs.memory->shown).append(" is needed");
    }

    /// Checks files until there are no more; called by each thread.
    void work() {
        for (;;) {
            Job job{next_.fetch_add(1)};
            if (job.place >= files_.size() || stopped_.load()) return;
            try {
                check(job);
                finish(std::move(job));
            } catch (const Stopped&) {
                return;
            }
        }
    }

    [[nodiscard]] VerimarkStatus status() const { return stopped_.load() ? kTrouble : status_; }

private:
    [[nodiscard]] bool hasTurn(const Job& job) const { return turn_.load(std::memory_order_acquire) == job.place; }

    void check(Job& job) {
        if (outputs_.memory == nullptr) {
            checkWithin(job, nullptr);
            return;
        }
        try {
            checkLimited(job);
            return;
        } catch (const Crowded&) {
            job = Job{job.place};
        }
        waitForTurn(job);
        checkLimited(job);
    }

    void checkLimited(Job& job) {
        MemoryAccount account(budget_, turn_, job.place);
        checkWithin(job, &account);
    }

    void checkWithin(Job& job, MemoryAccount* account) {
        const char* problem = nullptr;
        std::string text;
        try {
            checkInTurn(job, account);
        } catch (const std::bad_alloc&) {
            problem = "Out of memory";
            switch (account != nullptr ? account->end() : MemoryEnd::none) {
            case MemoryEnd::none: break;
            case MemoryEnd::over: problem = over_limit_.c_str(); break;
            case MemoryEnd::crowded:
            case MemoryEnd::refused: throw Crowded{};
            }
        } catch (const std::exception& failure) {
            text = failure.what();
            problem = text.c_str();
        }
        if (problem != nullptr) giveUp(job, problem);
    }

    void checkInTurn(Job& job, MemoryAccount* account) {
        const Charged charged(charge_to_, account);
        const std::string_view name = files_[job.place];
        if (outputs_.pages != nullptr)
            job.part = std::make_unique<ReportPart>(static_cast<std::uint32_t>(job.place + 1), name, kindOrIbs(name));
        Output printed = outputs_.announces ? Output() : Output::nowhere();
        std::size_t passed_on = 0;
        Run run(printed, packages_);
        const auto take_printed = [&] {
            const std::string_view text = std::string_view(printed.text()).substr(passed_on);
            passed_on += text.size();
            return text;
        };
        run.diagnostics.sink = [&](const Finding& finding) { give(job, take_printed(), finding); };
        try {
            checkContained(run, name, {.advises = outputs_.advises, .empty_is_found = outputs_.empty_is_found},
                           job.outcome);
            requireMemory(account);
        } catch (const std::bad_alloc&) {
            const Charged not_charged(charge_to_, nullptr);
            job.last_printed = take_printed();
            throw;
        }
        job.last_printed = take_printed();
        if (outputs_.report.known != nullptr)
            job.files.assign(run.diagnostics.files.begin(), run.diagnostics.files.end());
        writePart(job, &run, account);
    }

    /// Ends a check that was refused memory and went on without it.
    static void requireMemory(const MemoryAccount* account) {
        if (account != nullptr && account->end() != MemoryEnd::none) throw std::bad_alloc();
    }

    /// Writes the file's part of the report while what was read is there. What a baseline leaves out is known when the
    /// file has its turn.
    void writePart(Job& job, Run* run, MemoryAccount* account) {
        if (!job.part) {
            requireMemory(account);
            return;
        }
        if (outputs_.report.known != nullptr) {
            waitForTurn(job);
            passOn(job);
        }
        FilePart& file = job.part->file;
        file.version = job.outcome.version;
        file.counts = job.part->findings.counts;
        file.verdict = outputs_.report.verdictOf(job.outcome, file.counts);
        if (run != nullptr) run->diagnostics.sink = [](const Finding&) {};
        const bool in_place = hasTurn(job);
        try {
            outputs_.pages->write(*job.part, run, in_place);
            requireMemory(account);
        } catch (const std::bad_alloc&) {
            if (account != nullptr && !in_place) account->makeRoom(); // in place it takes less: nothing of it is kept
            throw;
        }
    }

    /// Makes a finding of what broke the check off, when its run is gone and its memory free again.
    void giveUp(Job& job, std::string_view problem) {
        job.outcome.refused = !job.outcome.checked;
        job.outcome.read = true;
        job.outcome.failed = true;
        try {
            const std::string text = std::string(problem).append("; the check ends here.");
            give(job, std::exchange(job.last_printed, {}),
                 {.severity = Severity::error,
                  .code = std::nullopt,
                  .file = files_[job.place],
                  .line = 1,
                  .shown_line = 0,
                  .exact = false,
                  .subject = nullptr,
                  .text = text});
            writePart(job, nullptr, nullptr);
        } catch (const std::bad_alloc&) {
            return; // the verdict remains
        }
    }

    /// Reports a finding, or keeps it until its file has its turn.
    void give(Job& job, std::string_view printed, const Finding& finding) {
        constexpr std::size_t kMostKept = std::size_t{1} << 20;
        if (stopped_.load(std::memory_order_relaxed)) throw Stopped{};
        const Charged not_charged(charge_to_, nullptr);
        MemoryAccount* const account = not_charged.before();
        requireMemory(account);
        if (job.part && outputs_.report.known == nullptr && outputs_.report.regards(finding))
            job.part->findings.add(finding);
        if (!hasTurn(job)) {
            keep(job, printed, finding, account);
            if (job.log.size() < kMostKept) return;
            if (account != nullptr) account->makeRoom(); // nobody waits with memory that others need
            requireMemory(account);
            waitForTurn(job);
            return;
        }
        passOn(job);
        report(job, printed, finding);
    }

    /// Keeps a finding of a file that has not its turn. Where there is no room the check is done again.
    static void keep(Job& job, std::string_view printed, const Finding& finding, MemoryAccount* account) {
        try {
            job.log.add(printed, finding);
        } catch (const std::bad_alloc&) {
            if (account != nullptr) account->makeRoom();
            throw;
        }
    }

    void waitForTurn(const Job& job) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return stopped_.load() || hasTurn(job); });
        if (stopped_.load()) throw Stopped{};
    }

    /// Reports a job that was checked, or lets it wait; those that wait for it follow.
    void finish(Job job) {
        if (!park(job)) return;
        for (;;) {
            end(job);
            const std::lock_guard lock(mutex_);
            const auto next = waiting_.find(turn_.load() + 1);
            turn_.fetch_add(1, std::memory_order_release);
            changed_.notify_all();
            if (next == waiting_.end()) return;
            job = std::move(next->second);
            waiting_size_ -= job.size();
            waiting_.erase(next);
        }
    }

    /// True when it is the job's turn; false when it waits for it with the others.
    bool park(Job& job) {
        constexpr std::size_t kMostWaiting = std::size_t{8} << 20;
        const std::size_t size = job.size();
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return stopped_.load() || hasTurn(job) || waiting_size_ + size <= kMostWaiting; });
        if (stopped_.load()) throw Stopped{};
        if (hasTurn(job)) return true;
        try {
            waiting_.emplace(job.place, std::move(job)); // which moves when there is a place to move to
            waiting_size_ += size;
            return false;
        } catch (const std::bad_alloc&) {
            lock.unlock();
            waitForTurn(job);
            return true;
        }
    }

    /// Reports what was kept of the job whose turn it is.
    void passOn(Job& job) {
        if (!begun_) outputs_.report.fileBegins({.path = files_[job.place], .kind = kindName(job)});
        begun_ = true;
        if (job.log.empty()) return;
        const FindingLog log = std::exchange(job.log, {});
        log.replay([&](std::string_view printed, const Finding& finding) { report(job, printed, finding); });
    }

    void report(Job& job, std::string_view printed, const Finding& finding) {
        outputs_.out.write(printed);
        const bool shown = outputs_.report.finding(finding);
        if (shown && job.part && outputs_.report.known != nullptr) job.part->findings.add(finding);
        if (outputs_.out.failed()) stop();
    }

    /// Ends the file whose turn it is.
    void end(Job& job) {
        const std::string_view name = files_[job.place];
        Verdict verdict = Verdict::failed;
        try {
            passOn(job);
            outputs_.out.write(job.last_printed);
            if (Baseline* const known = outputs_.report.known) {
                for (const std::string& file : job.files)
                    known->checked(file);
            }
            verdict = outputs_.report.fileEnds(job.outcome);
            if (job.part) outputs_.pages->end(*job.part);
        } catch (const std::bad_alloc&) { // the check had memory, its report has not
            tellOfLoss(name, ": out of memory; not everything is reported");
        } catch (const std::exception& failure) {
            tellOfLoss(name, std::string(": ").append(failure.what()).append("; not everything is reported"));
        }
        begun_ = false;
        if (!job.outcome.read || job.outcome.refused) tell(outputs_.out, outputs_.errors, name, ": not checked");
        status_ = std::max(status_, statusOf(verdict));
        if (outputs_.out.isTerminal()) outputs_.out.flush();
        if (outputs_.progress != nullptr) outputs_.progress->fileDone(verdict != Verdict::passed);
        if (outputs_.out.failed()) stop();
    }

    /// Says why findings of a file are missing.
    void tellOfLoss(std::string_view name, std::string_view problem) {
        status_ = kTrouble;
        tell(outputs_.out, outputs_.errors, name, problem);
    }

    [[noreturn]] void stop() {
        const std::lock_guard lock(mutex_);
        stopped_.store(true);
        changed_.notify_all();
        throw Stopped{};
    }

    [[nodiscard]] std::string_view kindName(const Job& job) const {
        return extensionOf(kindOrIbs(files_[job.place])).substr(1);
    }

    static VerimarkStatus statusOf(Verdict verdict) {
        switch (verdict) {
        case Verdict::passed: return kAllPassed;
        case Verdict::failed: return kSomeFailed;
        case Verdict::unread: break;
        }
        return kTrouble;
    }

    const CheckOutputs& outputs_;
    const FileList& files_;
    PkgSearch packages_;
    std::atomic<std::size_t> next_ = 0; // the first file that nobody has taken
    std::atomic<std::size_t> turn_ = 0; // the first file that is not done
    std::atomic<bool> stopped_ = false;

    std::mutex mutex_;
    std::condition_variable changed_; // the turn, the room or the stop
    std::map<std::size_t, Job> waiting_;
    std::size_t waiting_size_ = 0;

    ChargeTo charge_to_ = chargeNone;
    MemoryBudget budget_{.limit = 0};
    std::string over_limit_; // what is said of a file that needs too much

    // Of the thread whose turn it is.
    VerimarkStatus status_ = kAllPassed;
    bool begun_ = false; // the report knows of the file
};

} // namespace

void tell(Output& out, Output& errors, std::string_view subject, std::string_view text) {
    out.flush();
    if (out.failed()) return; // what is to be said of that is said at the end
    errors.write("verimark: ");
    errors.write(subject);
    errors.write(text);
    errors.write("\n");
    errors.flush();
}

VerimarkStatus checkAll(const CheckOutputs& outputs, const FileList& files, unsigned jobs) {
    const unsigned processors = std::max(std::thread::hardware_concurrency(), 1U);
    std::size_t wanted = std::min<std::size_t>(jobs != 0 ? jobs : processors, files.size());
    // Parts of a report wait for the baseline, and what was read with them: under a limit that would leave no room.
    if (outputs.memory != nullptr && outputs.pages != nullptr && outputs.report.known != nullptr) wanted = 1;
    Checking checking(outputs, files);
    std::vector<std::thread> threads;
    try {
        while (threads.size() + 1 < wanted)
            threads.emplace_back([&checking] { checking.work(); });
    } catch (const std::exception&) { // those that there are do the work
    }
    checking.work();
    for (std::thread& thread : threads)
        thread.join();
    return checking.status();
}

} // namespace kestrel
