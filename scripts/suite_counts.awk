# Reads the log that ctest keeps (Testing/Temporary/LastTest.log) and prints for each of its tests
#   name passed failed seconds
# For a program that counts its own tests these numbers are used: the last lines of GoogleTest, or a line "N passed, N
# failed". Any other program is one test. A program that failed without counting a failure counts as one failure.
{ sub(/\r$/, "") }
/^[0-9]+\/[0-9]+ Test: / {
  name = $3
  passed = failed = seconds = 0
  counted = inOutput = 0
}
name == "" { next }
/^Output:$/ { inOutput = 1 }
/^<end of output>$/ { inOutput = 0 }
inOutput && /^\[  PASSED  \] [0-9]+ tests?\.$/ { passed += $4; counted = 1 }
inOutput && /^\[  FAILED  \] [0-9]+ tests?, listed below:$/ { failed += $4; counted = 1 }
inOutput && /^[0-9]+ passed, [0-9]+ failed$/ { passed += $1; failed += $3; counted = 1 }
!inOutput && /^Test time = / { seconds = $4 }
!inOutput && /^(Test Passed\.|Test Failed\.|Test Timeout|Test not run|Test Fail)/ {
  good = /^Test Passed\./
  if (!counted && good) passed = 1
  if (!good && failed == 0) failed = 1
  print name, passed, failed, seconds
  name = ""
}
