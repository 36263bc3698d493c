#!/usr/bin/env bash
# The stubs agree with the type library; the C# samples compile against theirs; the names of the type library compile after the
# system's headers with the renames that the page on C++ tells readers to use.
#   check_stubs.sh TYPE_LIBRARY FOLDER C++_COMPILER PYTHON
set -eu
library=$1 stubs=$2 compiler=$3 python=$4
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export PYTHONDONTWRITEBYTECODE=1
"$python" "$root/scripts/make_stubs.py" "$stubs"
"$python" "$root/tests/samples/check_stubs.py" "$library" "$stubs"
for sample in Hello Members; do
  mcs -warnaserror -out:"$stubs/$sample.exe" "$root/samples/hosts/$sample.cs" "$stubs/Veltrano.cs"
done
mcs -target:library -warnaserror -out:"$stubs/Picture.dll" "$root/samples/hosts/Picture.cs"
# The first example of that page is a header and statements.
example=$(awk '/^```cpp/ { found = 1; next } /^```/ && found { exit } found' "$root/docs/hosts/cpp.md")
printf '#include <windows.h>\n%s\nint main() {\n%s\n}\n' "${example%%$'\n'*}" "${example#*$'\n'}" >"$stubs/example.cpp"
for source in names example; do "$compiler" -fsyntax-only -I "$(dirname "$library")" "$stubs/$source.cpp"; done
xmllint --noout "$root/samples/hosts/hello.wsf"
