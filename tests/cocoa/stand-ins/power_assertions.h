#pragma once

namespace tavenhall::test {

// Whether power assertions are granted; they are until this says otherwise. The identifiers are 101, 102 ...
void grantPowerAssertions(bool areGranted);

}  // namespace tavenhall::test
