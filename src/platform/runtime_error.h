#pragma once
// A trapped run-time failure: a number and a description, as the error traps of the
// control report them ("Overflow", "Type mismatch", ...). Thrown only inside the core and
// always caught before control returns to the host.

#include <exception>
#include <string>
#include <utility>

namespace vantrel {

class RuntimeError : public std::exception {
 public:
  RuntimeError(int number, std::string description)
      : number_(number), description_(std::move(description)) {}

  int Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

  static RuntimeError Overflow() { return {6, "Overflow"}; }
  static RuntimeError OutOfMemory() { return {7, "Out of memory"}; }
  static RuntimeError SubscriptOutOfRange() { return {9, "Subscript out of range"}; }
  static RuntimeError TypeMismatch() { return {13, "Type mismatch"}; }
  static RuntimeError FileNotFound() { return {53, "File not found"}; }
  static RuntimeError PathFileAccess() { return {75, "Path/File access error"}; }
  static RuntimeError DeviceIo() { return {57, "Device I/O error"}; }

 private:
  int number_;
  std::string description_;
};

}  // namespace vantrel
