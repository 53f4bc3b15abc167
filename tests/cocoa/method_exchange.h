#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

namespace tavenhall::test {

// From now on `original` sent to an object of the class runs `replacement`, and the other way round. Before any
// thread.
inline void exchangeMethods(Class ofClass, SEL original, SEL replacement) {
  method_exchangeImplementations(class_getInstanceMethod(ofClass, original),
                                 class_getInstanceMethod(ofClass, replacement));
}

inline void exchangeClassMethods(Class ofClass, SEL original, SEL replacement) {
  method_exchangeImplementations(class_getClassMethod(ofClass, original),
                                 class_getClassMethod(ofClass, replacement));
}

}  // namespace tavenhall::test
