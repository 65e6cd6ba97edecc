// Faults that the linter finds, for a test of the plugin beside this file. Nothing is built of it.
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace faults {

struct Base {
  virtual ~Base() = default;
  virtual void Foo(int);
};
struct Derived : Base {
  virtual void Foo(int);
};

struct Thrower {
  Thrower() {}
  Thrower(Thrower&& other) { (void)other; }
  ~Thrower() { throw 1; }
  void swap(Thrower&) noexcept { throw 2; }
};

template <class T>
int Count(std::vector<T> all) {
  int* none = 0;
  return none == 0 ? static_cast<int>(all.size()) : 1;
}

int CountWords(std::vector<std::string> words) { return Count<std::string>(words); }

std::string Take(std::string value) { return value + "x"; }

std::size_t Moved() {
  std::string from = "a";
  const std::string to = std::move(from);
  return from.size() + to.size();
}

void Copies(const std::map<int, std::string>& all) {
  for (auto one : all) (void)one;
}

bool Same(int a) { return a == a; }

void Semicolon(bool given) {
  if (given)
    ;
  { Moved(); }
}

long Wide(int a, int b) { return a * b; }

void Unused() { std::make_unique<int>(3); }

int Spin(int i) {
  int k = 0;
  while (i < 10) ++k;
  return k;
}

int Branch(int x) {
  if (x == 1) {
    return 2;
  } else {
    return 2;
  }
}

std::string Repeat(const std::string& piece) {
  std::string all;
  for (int i = 0; i < 3; ++i) all = all + piece;
  std::string copy = piece;
  return all + copy;
}

double Rounded(float value) { return static_cast<double>(static_cast<int>(value + 0.5)) + 10 / 3; }

bool Compared(const char* text) { return strcmp(text, "b") ? true : text == nullptr; }

std::vector<int> Grow(int n) {
  std::vector<int> all;
  for (int i = 0; i < n; ++i) all.push_back(i);
  return all;
}

}  // namespace faults

int _Reserved = 0;
int Twice();
int Twice();
