// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::test {

/// Another implementation of a method, for as long as this lives.
class ReplacedMethod {
public:
    ReplacedMethod(Method method, IMP replacement)
        : _method(method), _original(method_setImplementation(method, replacement)) {}
    ~ReplacedMethod() { method_setImplementation(_method, _original); }
    ReplacedMethod(const ReplacedMethod&) = delete;
    ReplacedMethod& operator=(const ReplacedMethod&) = delete;

private:
    Method _method;
    IMP _original;
};

}  // namespace tav::test
