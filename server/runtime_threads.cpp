// The threads' side of the compiler's runtime, made of nothing but Windows' own locks and slots. The library
// that comes with the compiler keeps a record, two handles and some locks for every thread that ever touched
// it, and gives none of them back; a host that loads and unloads the DLL again and again would fill its
// process with them. Here a thread has one slot, which Windows empties when the thread ends, and whose values
// of all threads are destroyed when the DLL goes: a thread that lives on keeps nothing that points into it.
//
// The functions are those that the runtime and our own code call. With any other of that library's functions
// the link fails for names defined twice: then it belongs here.

#include <windows.h>

#include <pthread.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <utility>

namespace __gnu_cxx {
/// Of the runtime, which declares it nowhere.
void __freeres();
}  // namespace __gnu_cxx

namespace {

/// A lock or a condition lies in the variable itself. One that was initialised where it is defined
/// starts with one of the header's small negative values, which neither has in use (no address is that high).
template <class Primitive>
Primitive* primitiveAt(std::intptr_t* variable) {
  static_assert(sizeof(Primitive) == sizeof *variable);
  std::atomic_ref<std::intptr_t> word(*variable);
  std::intptr_t found = word;
  if (found >= -3 && found < 0) {
    word.compare_exchange_strong(found, 0);
  }
  return reinterpret_cast<Primitive*>(variable);
}

SRWLOCK* lockAt(pthread_mutex_t* mutex) {
  return primitiveAt<SRWLOCK>(mutex);
}

CONDITION_VARIABLE* conditionAt(pthread_cond_t* condition) {
  return primitiveAt<CONDITION_VARIABLE>(condition);
}

/// A recursive mutex keeps the value it was defined with, as it has no room for its owner, and is listed here
/// while it is held. There are three of them: that of the runtime's static variables and two of the database
/// engine.
struct Held {
  const pthread_mutex_t* mutex = nullptr;
  DWORD owner = 0;
  unsigned depth = 0;
};

constexpr std::size_t mostHeld = 16;

class RecursiveMutexes {
 public:
  void lock(const pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(&lock_);
    take(mutex, 1);
    ReleaseSRWLockExclusive(&lock_);
  }
  void unlock(const pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(&lock_);
    give(mutex, 1);
    ReleaseSRWLockExclusive(&lock_);
  }
  /// Who is about to signal the condition takes the mutex first, and gets it only when this thread sleeps.
  void wait(CONDITION_VARIABLE* condition, const pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(&lock_);
    const unsigned depth = find(mutex)->depth;
    give(mutex, depth);
    SleepConditionVariableSRW(condition, &lock_, INFINITE, 0);
    take(mutex, depth);
    ReleaseSRWLockExclusive(&lock_);
  }

 private:
  void take(const pthread_mutex_t* mutex, unsigned times) {
    const DWORD self = GetCurrentThreadId();
    Held* held = find(mutex);
    while (held == nullptr || (held->mutex == mutex && held->owner != self)) {
      SleepConditionVariableSRW(&released_, &lock_, INFINITE, 0);
      held = find(mutex);
    }
    *held = {mutex, self, held->depth + times};
  }
  void give(const pthread_mutex_t* mutex, unsigned times) {
    Held* const held = find(mutex);
    held->depth -= times;
    if (held->depth == 0) {
      *held = {};
      WakeAllConditionVariable(&released_);
    }
  }
  /// The mutex's entry when it is held, otherwise a free one; null when none is left.
  Held* find(const pthread_mutex_t* mutex) {
    Held* unused = nullptr;
    for (Held& held : held_) {
      if (held.mutex == mutex) {
        return &held;
      }
      if (held.mutex == nullptr) {
        unused = &held;
      }
    }
    return unused;
  }

  SRWLOCK lock_ = SRWLOCK_INIT;
  CONDITION_VARIABLE released_ = CONDITION_VARIABLE_INIT;
  std::array<Held, mostHeld> held_;
};

constinit RecursiveMutexes recursiveMutexes;

bool isRecursive(const pthread_mutex_t* mutex) {
  return *mutex == PTHREAD_RECURSIVE_MUTEX_INITIALIZER;
}

/// The stages of everything that happens once.
enum Stage : pthread_once_t { untouched = PTHREAD_ONCE_INIT, running, done };

SRWLOCK onceLock = SRWLOCK_INIT;
CONDITION_VARIABLE onceChanged = CONDITION_VARIABLE_INIT;

/// Sets the stage that follows, and wakes who waits for it.
class StageChange {
 public:
  explicit StageChange(std::atomic_ref<pthread_once_t> stage) : stage_(stage) {}
  StageChange(const StageChange&) = delete;
  StageChange& operator=(const StageChange&) = delete;
  StageChange(StageChange&&) = delete;
  StageChange& operator=(StageChange&&) = delete;
  ~StageChange() {
    AcquireSRWLockExclusive(&onceLock);
    stage_ = next;
    ReleaseSRWLockExclusive(&onceLock);
    WakeAllConditionVariable(&onceChanged);
  }

  /// What an exception leaves behind: the next caller tries again.
  Stage next = untouched;

 private:
  std::atomic_ref<pthread_once_t> stage_;
};

/// The runtime makes one key, for all its thread-local variables.
constexpr std::size_t mostKeys = 4;

struct Key {
  DWORD slot = FLS_OUT_OF_INDEXES;
  void (*destroy)(void*) = nullptr;
};

std::array<Key, mostKeys> keys;
std::atomic<unsigned> keyCount{0};

template <std::size_t Index>
void WINAPI destroyValue(void* value) {
  if (value != nullptr && keys[Index].destroy != nullptr) {
    keys[Index].destroy(value);
  }
}

template <std::size_t... Index>
constexpr std::array<PFLS_CALLBACK_FUNCTION, mostKeys> destroyers(std::index_sequence<Index...>) {
  return {&destroyValue<Index>...};
}

/// Ends what the runtime would keep for the life of the process: its memory for exceptions when memory is
/// short, and every thread's variables. The lowest priority runs last, behind every other destructor.
__attribute__((destructor(101))) void giveBack() {
  __gnu_cxx::__freeres();
  for (const Key& key : keys) {
    if (key.slot != FLS_OUT_OF_INDEXES) {
      FlsFree(key.slot);
    }
  }
}

}  // namespace

extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* /*kind*/) {
  *mutex = 0;
  return 0;
}

int pthread_mutex_destroy(pthread_mutex_t* /*mutex*/) {
  return 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
  if (isRecursive(mutex)) {
    recursiveMutexes.lock(mutex);
  } else {
    AcquireSRWLockExclusive(lockAt(mutex));
  }
  return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
  if (isRecursive(mutex)) {
    recursiveMutexes.unlock(mutex);
  } else {
    ReleaseSRWLockExclusive(lockAt(mutex));
  }
  return 0;
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  if (isRecursive(mutex)) {
    recursiveMutexes.wait(conditionAt(condition), mutex);
  } else {
    SleepConditionVariableSRW(conditionAt(condition), lockAt(mutex), INFINITE, 0);
  }
  return 0;
}
int pthread_cond_broadcast(pthread_cond_t* condition) {
  WakeAllConditionVariable(conditionAt(condition));
  return 0;
}

int pthread_once(pthread_once_t* once, void (*initialise)()) {
  const std::atomic_ref<pthread_once_t> stage(*once);
  if (stage == done) {
    return 0;
  }
  AcquireSRWLockExclusive(&onceLock);
  while (stage == running) {
    SleepConditionVariableSRW(&onceChanged, &onceLock, INFINITE, 0);
  }
  const bool isOurs = stage == untouched;
  if (isOurs) {
    stage.store(running);
  }
  ReleaseSRWLockExclusive(&onceLock);
  if (isOurs) {
    StageChange change(stage);
    initialise();
    change.next = done;
  }
  return 0;
}

int pthread_key_create(pthread_key_t* key, void (*destroy)(void*)) {
  static constexpr auto callbacks = destroyers(std::make_index_sequence<mostKeys>());
  const unsigned index = keyCount++;
  if (index >= mostKeys) {
    return EAGAIN;
  }
  keys[index].destroy = destroy;
  keys[index].slot = FlsAlloc(callbacks[index]);
  *key = index;
  return keys[index].slot != FLS_OUT_OF_INDEXES ? 0 : EAGAIN;
}

void* pthread_getspecific(pthread_key_t key) {
  // Windows clears the last error here, which the host may be about to ask for.
  const DWORD lastError = GetLastError();
  void* const value = FlsGetValue(keys[key].slot);
  SetLastError(lastError);
  return value;
}

int pthread_setspecific(pthread_key_t key, const void* value) {
  return FlsSetValue(keys[key].slot, const_cast<void*>(value)) != FALSE ? 0 : ENOMEM;
}

pthread_t pthread_self() {
  return GetCurrentThreadId();
}

int clock_gettime(clockid_t clock, timespec* now) {
  constexpr std::int64_t second = 1'000'000'000;
  std::int64_t nanoseconds = 0;
  if (clock == CLOCK_REALTIME) {
    constexpr std::int64_t from1601To1970 = 116'444'736'000'000'000;  // in 100 ns
    FILETIME time;
    GetSystemTimeAsFileTime(&time);
    const auto ticks =
        static_cast<std::int64_t>((std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime);
    nanoseconds = (ticks - from1601To1970) * 100;
  } else {
    LARGE_INTEGER count;
    LARGE_INTEGER perSecond;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&perSecond);
    nanoseconds = count.QuadPart / perSecond.QuadPart * second +
                  count.QuadPart % perSecond.QuadPart * second / perSecond.QuadPart;
  }
  now->tv_sec = static_cast<decltype(now->tv_sec)>(nanoseconds / second);
  now->tv_nsec = static_cast<decltype(now->tv_nsec)>(nanoseconds % second);
  return 0;
}

}  // extern "C"
