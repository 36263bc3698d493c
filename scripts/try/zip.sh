# The zip for Windows: its contents, both DLLs registered by regsvr32, its program, a C++ host. Read by try-package.sh.

# contacts x86|AMD64 SAMPLES_FOLDER_ON_WINDOWS LABEL: runs contacts.vbs, which copies the database there.
contacts() {
  local said
  rm -rf "$work/contacts"
  mkdir "$work/contacts"
  said=$("$wine" "$work/cscript-$1.exe" //nologo "$2\\contacts.vbs" "$(windows_path "$work/contacts")" 2>/dev/null | tr -d '\r') || true
  expect "$3: contacts.vbs says" "done" "$(tail -n 1 <<<"$said")"
  expect "$3: people in its database" 7 "$(mdb-export "$work/contacts/contacts.mdb" Contacts 2>/dev/null | grep -cE '^[0-9]+,"' || true)"
}

# unfinished x86|AMD64 SAMPLES_FOLDER: the scripts for classes and of the cookbook that do not say "done" at their end. Wine's
# script host has no LoadPicture, which png.vbs needs.
unfinished() {
  local script
  rm -rf "$work/scripts"
  mkdir "$work/scripts"
  cp "$2/contacts.mdb" "$2/photo.jpg" "$work/scripts/"
  for script in "$2"/cookbook/*.vbs "$2"/classes/*.vbs; do
    "$wine" "$work/cscript-$1.exe" //nologo "$(windows_path "$script")" "$(windows_path "$work/scripts")" 2>/dev/null |
      tr -d '\r' | tail -n 1 | grep -qx done || basename "$script"
  done
}

echo "The zip, $(basename "$zip")"
unzip -q "$zip" -d "$work/zip"
folder=$(echo "$work/zip"/*)
saw "files" "$(find "$folder" -type f | wc -l), $(du -sh --apparent-size "$folder" | cut -f 1) unpacked"
expect "licence texts" 10 "$(find "$folder/licenses" -name '*.txt' ! -name README.txt -size +1k | wc -l)"
texts "$folder" README.txt LICENSE.txt NOTICE.txt CHANGELOG.txt licenses/Apache-2.0.txt
expect "lines of scripts and stubs that end in CR LF" "all" \
  "$(grep -rqv $'\r$' "$folder/stubs" "$folder/samples"/*.vbs "$folder/samples"/*/ && echo "not all" || echo "all")"
texts "$folder" manual/index.html manual/searchindex.js manual/licenses/furo.txt stubs/veltrano_constants.vbs stubs/Veltrano.cs
expect "links of the manual that lead nowhere" "" "$(dead_links "$folder/manual")"
for architecture in x86 x64; do
  expect "$architecture: metrics beside the DLL" 16 "$(find "$folder/$architecture" -maxdepth 1 -name '*.afm' | wc -l)"
done
use_prefix zip
for architecture in x86 x64; do
  expect "$architecture: veltrano.exe says" "veltrano $(basename "$zip" | cut -d - -f 2)" \
    "$("$wine" "$folder/$architecture/veltrano.exe" --version 2>/dev/null | tr -d '\r')"
done
registry >"$work/zip-before"
"$wine" 'C:\windows\syswow64\regsvr32.exe' /s "$(windows_path "$folder/x86/VeltranoFrameWorkDLL.dll")"
script x86 "$(windows_path "$folder/samples")" "x86 by regsvr32"
contacts x86 "$(windows_path "$folder/samples")" "x86 by regsvr32"
expect "x86 by regsvr32: scripts that do not reach their end" png.vbs "$(unfinished x86 "$folder/samples")"
"$wine" 'C:\windows\system32\regsvr32.exe' /s "$(windows_path "$folder/x64/VeltranoFrameWorkDLL.dll")"
script AMD64 "$(windows_path "$folder/samples")" "x64 by regsvr32"
contacts AMD64 "$(windows_path "$folder/samples")" "x64 by regsvr32"
registry >"$work/zip-registered"
i686-w64-mingw32-g++-posix -municode -static "$folder/samples/hosts/hello.cpp" "$folder/x86/include/veltrano_i.c" \
  -I "$folder/x86/include" -o "$work/hello.exe" -lole32 -loleaut32 -luuid 2>"$work/hello.log" || cat "$work/hello.log"
expect "C++ host, built from the zip: hello.exe says" "done" \
  "$("$wine" "$work/hello.exe" "$(windows_path "$work/cpp.pdf")" 2>/dev/null | tr -d '\r')"
expect "C++ host: its page shows" "Hello from C++" "$(page "$work/cpp.pdf")"
for target in syswow64:x86 system32:x64; do
  "$wine" "C:\\windows\\${target%:*}\\regsvr32.exe" /s /u "$(windows_path "$folder/${target#*:}/VeltranoFrameWorkDLL.dll")"
done
registry >"$work/zip-after"
same "registry after regsvr32 /u of both" "as before" "$work/zip-before" "$work/zip-after"
