#!/bin/sh
# What is written in the launcher's place where there is none: a start script beside the settings. It
# does the same job in the usual way, with as few processes as a careful script needs.
#
# shellcheck disable=SC2016 # The placeholders of the settings look like variables of the shell.
# shellcheck disable=SC2034,SC2154 # The variables come from the settings.
set -eu

program=$(readlink -f -- "$0")
rcp=${program%/*}
installation=${rcp%/*}
properties=$rcp/rcplauncher.properties

# The settings, as shell variables: "jvm.location=/x" becomes property_jvm_location. What the command
# line takes in the order of the file becomes one line each.
settings=$(sed -n \
    -e '/^[[:blank:]]*#/d' \
    -e "s/'/'\\\\''/g" \
    -e 's/^vmarg\.[^=]*=\(.*\)$/vm_options="$vm_options"'"'"'\1\n'"'"'/p;t' \
    -e 's/^\(-[DX].*\)$/vm_options="$vm_options"'"'"'\1\n'"'"'/p;t' \
    -e 's/^env\.set\.\([A-Za-z_][A-Za-z0-9_]*\)=\(.*\)$/export \1='"'"'\2'"'"'/p;t' \
    -e 's/^env\.unset\.\([A-Za-z_][A-Za-z0-9_]*\)=.*$/unset \1/p;t' \
    -e 's/^\([A-Za-z][A-Za-z0-9.]*\)=\(.*\)$/\1\n\2/;T' \
    -e 'h;s/\n.*//;s/\./_/g;G;s/^\([^\n]*\)\n[^\n]*\n\(.*\)$/property_\1='"'"'\2'"'"'/p' \
    -- "$properties")
vm_options=''
eval "$settings"

# resolve TEXT: its placeholders replaced, in $resolved.
resolve() {
    resolved=$1
    while :; do
        case $resolved in
        *'${rcp.home}'*) resolved=${resolved%%'${rcp.home}'*}$installation${resolved#*'${rcp.home}'} ;;
        *'${env.'*'}'*)
            tail=${resolved#*'${env.'}
            name=${tail%%'}'*}
            default=''
            case $name in *,*) default=${name#*,} name=${name%%,*} ;; esac
            eval "value=\${$name:-\$default}"
            resolved=${resolved%%'${env.'*}$value${tail#*'}'}
            ;;
        *'${workspace.location}'*)
            resolved=${resolved%%'${workspace.location}'*}$workspace${resolved#*'${workspace.location}'}
            ;;
        *'${prop.'*'}'*)
            tail=${resolved#*'${prop.'}
            name=$(printf %s "${tail%%'}'*}" | tr . _)
            eval "value=\${property_$name:-}"
            resolved=${resolved%%'${prop.'*}$value${tail#*'}'}
            ;;
        *) return ;;
        esac
    done
}

workspace=''
resolve "$property_rcp_data"
workspace=$resolved
resolve "$property_rcp_base_location"
base=$resolved
resolve "$property_jvm_location$property_jvm_libpath"
jvm=$resolved
configuration=$workspace/.config

# The user's area: directories, and copies of the files a user can change.
for directory in "$workspace/logs" "$workspace/applications/eclipse/features" \
    "$workspace/applications/eclipse/plugins" "$configuration/org.eclipse.update"; do
    [ -d "$directory" ] || mkdir -p -- "$directory"
done
for name in config.ini rcpinstall.properties; do
    [ -e "$configuration/$name" ] || cp -- "$base/config/user/$name" "$configuration/$name"
done
[ -e "$configuration/org.eclipse.update/platform.xml" ] ||
    cp -- "$base/config/user/platform.xml" "$configuration/org.eclipse.update/platform.xml"
extension=$installation/shared/eclipse/.eclipseextension
if [ -e "$extension" ]; then
    cp -- "$extension" "$workspace/applications/eclipse/.eclipseextension"
fi

# One platform a workspace: whoever holds the lock looks whether the recorded one is alive.
exec 9>>"$workspace/.rcp.lock"
flock 9
running=''
if [ -s "$workspace/.rcp.main" ]; then
    read -r running <"$workspace/.rcp.main" || : # without a line feed at its end
    kill -0 "$running" 2>/dev/null || running=''
fi
if [ -z "$running" ]; then
    printf '%s\n' "$$" >"$workspace/.rcp.main"
fi

# The command line.
newline='
'
user_arguments=''
if [ "${1:-}" = -config ]; then
    n=1
    while eval "value=\${property_config_${2}_$n-}" && [ -n "$value" ]; do
        user_arguments=$user_arguments$value$newline
        n=$((n + 1))
    done
    shift 2
fi
resolve "$vm_options"
vm_options=$resolved
IFS=$newline
set -f
front=${user_arguments%%-vmargs*}
behind=''
case $user_arguments in *-vmargs*) behind=${user_arguments#*-vmargs"$newline"} ;; esac
# shellcheck disable=SC2086 # One word a line is what is wanted.
set -- "$base/macosx/x86/eclipse" --launcher.suppressErrors "$@" $front \
    -data "$workspace" -configuration "$configuration" \
    -application "$property_application" -plugincustomization "$property_plugincustomization" \
    -personality "$property_personality" -vm "$jvm" -startup "$base/launcher.jar" \
    ${running:+-useDaemon "$running"} \
    -vmargs $behind $vm_options "-Drcp.home=$installation" "-Drcp.data=$workspace" \
    "-Dcom.ovr.rcp.install.id=$property_rcp_install_id" \
    "-Drcp.install.config=$property_install_configuration" -cp "$property_cp" \
    -Dfile.encoding=UTF-8 -XstartOnFirstThread
printf '%s\n' "$@" >"$workspace/logs/start.log"
exec 9>&-
exec "$@"
