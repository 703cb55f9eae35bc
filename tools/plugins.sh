#!/bin/bash
# Installs the LV2 bundle with the libraries that it needs, for the user or for everybody, or takes it away.
#
#   tools/plugins.sh [--system] [--remove]
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

folder=$HOME/.lv2
remove=false
for argument in "$@"; do
    case $argument in
        --system) folder=/usr/local/lib/lv2 ;;
        --remove) remove=true ;;
        *)
            echo "usage: ./run plugins [--system] [--remove]" >&2
            exit 2
            ;;
    esac
done
bundle=$folder/qoaudio.lv2

if $remove; then
    [[ -d $bundle ]] || fail "there is no $bundle"
    rm -rf "$bundle"
    say "removed $bundle"
    exit 0
fi

build "$root/build"
mkdir -p "$folder" || fail "$folder can't be made"
# Written beside and renamed, so that a host never finds half of it.
fresh=$(mktemp -d "$folder/.qoaudio.XXXXXX")
trap 'rm -rf "$fresh"' EXIT
chmod 755 "$fresh"
quietly cmake --install "$root/build" --prefix "$fresh/install"
libraries=$(dirname "$(find "$fresh/install" -name 'libkro.so')")
mv "$libraries/lv2/qoaudio.lv2" "$fresh/bundle"
for library in kro qocinterface qoc qohost QoAudioComponentsUI; do
    cp -L "$libraries/lib$library".so.[0-9].[0-9] "$fresh/bundle/"
done
rm -rf "$bundle"
mv "$fresh/bundle" "$bundle"
say "$(grep -c 'a lv2:Plugin' "$bundle/manifest.ttl") plug-ins in $bundle: hosts find them as \"Amplify\", \"Amplify (mono)\", \"Amplify (5.1)\", ..."
