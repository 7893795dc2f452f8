#include "util/md5_kernel.hpp"

#include <array>
#include <cstring>
#include <utility>
#include <vector>

// The same few templates give every width. Vectors are only ever passed by reference into functions that are
// inlined, since what is passed by value depends on the instruction set of the caller.
namespace util {
namespace {

template <int lanes>
struct VectorOf {
  typedef std::uint32_t Type __attribute__((vector_size(4 * lanes)));
};
template <>
struct VectorOf<1> {
  using Type = std::uint32_t;
};

// RFC 1321, 3.4.
constexpr std::array<std::uint32_t, 64> kSines = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};
constexpr int kShifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

constexpr int WordOf(int step) {
  constexpr int kFactor[4] = {1, 5, 3, 7}, kOffset[4] = {0, 1, 5, 0};
  return (kFactor[step / 16] * step + kOffset[step / 16]) % 16;
}

template <int step, class V>
[[gnu::always_inline]] inline void Step(V& a, const V& b, const V& c, const V& d, const V* words) {
  V mixed;
  if constexpr (step < 16) {
    mixed = d ^ (b & (c ^ d));
  } else if constexpr (step < 32) {
    mixed = c ^ (d & (b ^ c));
  } else if constexpr (step < 48) {
    mixed = b ^ c ^ d;
  } else {
    mixed = c ^ (b | ~d);
  }
  const V sum = a + mixed + (words[WordOf(step)] + kSines[step]);
  constexpr int kShift = kShifts[step / 16][step % 4];
  a = b + ((sum << kShift) | (sum >> (32 - kShift)));
}

template <class V, int... four>
[[gnu::always_inline]] inline void Steps(V& a, V& b, V& c, V& d, const V* words,
                                         std::integer_sequence<int, four...>) {
  ((Step<4 * four>(a, b, c, d, words), Step<4 * four + 1>(d, a, b, c, words),
    Step<4 * four + 2>(c, d, a, b, words), Step<4 * four + 3>(b, c, d, a, words)),
   ...);
}

// Where element `i` comes from when two rows of `lanes` elements trade their squares of side `side` beside
// the diagonal; elements of the second row count from `lanes` on.
constexpr int Origin(int lanes, int side, bool secondRow, int i) {
  const bool ofSecond = (i / side) % 2 != 0;
  const int column = i - (ofSecond ? side : 0) + (secondRow ? side : 0);
  return ofSecond ? lanes + column : column;
}

template <int side, class V, int... i>
[[gnu::always_inline]] inline void TradeSquares(V& first, V& second, std::integer_sequence<int, i...>) {
  const V a = first, b = second;
  first = __builtin_shufflevector(a, b, Origin(sizeof...(i), side, false, i)...);
  second = __builtin_shufflevector(a, b, Origin(sizeof...(i), side, true, i)...);
}

// Turns `lanes` rows of as many words into columns, halving the squares that trade places.
template <int lanes, int side, class V>
[[gnu::always_inline]] inline void Transpose(V* rows) {
  if constexpr (side > 0) {
    for (int i = 0; i < lanes; ++i) {
      if ((i & side) == 0)
        TradeSquares<side>(rows[i], rows[i + side], std::make_integer_sequence<int, lanes>{});
    }
    Transpose<lanes, side / 2>(rows);
  }
}

template <class V>
[[gnu::always_inline]] inline void Load(V& vector, const void* from) {
  std::memcpy(&vector, from, sizeof vector);
}

template <int lanes>
[[gnu::always_inline]] inline void Run(Md5States& states, const std::byte* const* data, std::size_t blocks) {
  using V = typename VectorOf<lanes>::Type;
  V a, b, c, d;
  Load(a, states[0]);
  Load(b, states[1]);
  Load(c, states[2]);
  Load(d, states[3]);
  for (std::size_t at = 0; at < blocks * kMd5Block; at += kMd5Block) {
    V words[16];
    for (int part = 0; part < 16; part += lanes) {
      for (int lane = 0; lane < lanes; ++lane) Load(words[part + lane], data[lane] + at + 4 * part);
      Transpose<lanes, lanes / 2>(words + part);
    }
    const V a0 = a, b0 = b, c0 = c, d0 = d;
    Steps(a, b, c, d, words, std::make_integer_sequence<int, 16>{});
    a += a0;
    b += b0;
    c += c0;
    d += d0;
  }
  std::memcpy(states[0], &a, sizeof a);
  std::memcpy(states[1], &b, sizeof b);
  std::memcpy(states[2], &c, sizeof c);
  std::memcpy(states[3], &d, sizeof d);
}

void RunOne(Md5States& states, const std::byte* const* data, std::size_t blocks) {
  Run<1>(states, data, blocks);
}
[[gnu::target("sse2")]] void RunFour(Md5States& states, const std::byte* const* data, std::size_t blocks) {
  Run<4>(states, data, blocks);
}
[[gnu::target("avx2")]] void RunEight(Md5States& states, const std::byte* const* data, std::size_t blocks) {
  Run<8>(states, data, blocks);
}
// Rotation and each of the four functions are one instruction there: some three fifths of the time.
[[gnu::target("avx512f,avx512vl")]] void RunFourVl(Md5States& states, const std::byte* const* data,
                                                   std::size_t blocks) {
  Run<4>(states, data, blocks);
}
[[gnu::target("avx512f,avx512vl")]] void RunEightVl(Md5States& states, const std::byte* const* data,
                                                    std::size_t blocks) {
  Run<8>(states, data, blocks);
}
[[gnu::target("avx512f")]] void RunSixteen(Md5States& states, const std::byte* const* data,
                                           std::size_t blocks) {
  Run<16>(states, data, blocks);
}

}  // namespace

std::span<const Md5Kernel> Md5Kernels() {
  static const std::vector<Md5Kernel> kKernels = [] {
    const bool narrow = __builtin_cpu_supports("avx512vl") != 0;
    const std::pair<bool, Md5Kernel> all[] = {
        {true, {1, RunOne}},       {__builtin_cpu_supports("sse2") != 0, {4, RunFour}},
        {narrow, {4, RunFourVl}},  {__builtin_cpu_supports("avx2") != 0, {8, RunEight}},
        {narrow, {8, RunEightVl}}, {__builtin_cpu_supports("avx512f") != 0, {16, RunSixteen}}};
    std::vector<Md5Kernel> offered;
    for (const auto& [here, kernel] : all) {
      if (here) offered.push_back(kernel);
    }
    return offered;
  }();
  return kKernels;
}

const Md5Kernel& KernelFor(std::size_t lanes) {
  const std::span<const Md5Kernel> kernels = Md5Kernels();
  const Md5Kernel* best = &kernels.front();
  for (const Md5Kernel& kernel : kernels) {
    if (best->lanes < lanes || kernel.lanes == best->lanes) best = &kernel;
  }
  return *best;
}

}  // namespace util
