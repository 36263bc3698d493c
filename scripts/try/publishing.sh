# What is published beside the packages: checksums and the winget manifest; and that packing again gives the same. Read by
# try-package.sh after installers.sh, whose registry it compares with.

echo "Checksums and the winget manifest"
expect "sha256sum finds" "all as listed" "$(cd out && sha256sum --quiet -c SHA256SUMS >"$work/sums.log" 2>&1 && echo "all as listed" || echo "others")"
expect "files without a checksum" "SHA256SUMS" "$(cd out && find . -maxdepth 1 -type f -printf '%f\n' | grep -vxFf <(cut -c 67- SHA256SUMS))"
expect "the manifest is" "as it must be" "$(python3 scripts/try/check_winget_manifest.py out "$work/x64-registered.registry" \
  "$work/x86-registered.registry" 2>&1 && echo "as it must be")"

echo "The same build packed again"
scripts/package/pack.sh "$work/again" "$work/out again" >"$work/again.log" 2>&1 || tail -n 5 "$work/again.log"
if [ -n "${VELTRANO_SIGN:-}" ]; then
  saw "packages with other bytes" "not compared: they are signed"
else
  same "the packages have" "the same bytes" out/SHA256SUMS "$work/out again/SHA256SUMS"
fi
