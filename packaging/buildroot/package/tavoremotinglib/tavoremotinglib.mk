################################################################################
#
# tavoremotinglib
#
################################################################################

# The source tree is the one that holds this file, so there is no archive and no .hash file; its
# project() line has the version.
TAVOREMOTINGLIB_SITE = $(realpath $(BR2_EXTERNAL_TAVO_PATH)/../..)
TAVOREMOTINGLIB_SITE_METHOD = local
TAVOREMOTINGLIB_OVERRIDE_SRCDIR_RSYNC_EXCLUSIONS = --exclude /build
TAVOREMOTINGLIB_VERSION = $(shell sed -n 's/^ *VERSION \([0-9.]*\)$$/\1/p' $(TAVOREMOTINGLIB_SITE)/CMakeLists.txt)
TAVOREMOTINGLIB_LICENSE = PROPRIETARY
TAVOREMOTINGLIB_REDISTRIBUTE = NO
TAVOREMOTINGLIB_INSTALL_STAGING = YES
TAVOREMOTINGLIB_DEPENDENCIES = boost jsoncpp libcurl
TAVOREMOTINGLIB_CONF_OPTS = \
	-DTAVO_BUILD_TESTS=OFF \
	-DTAVO_BUILD_SIMULATOR=OFF \
	-DTAVO_BUILD_TOOLS=OFF \
	-DTAVO_BUILD_EXAMPLES=OFF

ifeq ($(BR2_PACKAGE_TAVOREMOTINGLIB_SYSTEM_FRAMEWORK),y)
TAVOREMOTINGLIB_CONF_OPTS += -DTAVO_SYSTEM_FRAMEWORK=ON
TAVOREMOTINGLIB_DEPENDENCIES += mirrinframework
else
TAVOREMOTINGLIB_CONF_OPTS += -DTAVO_SYSTEM_FRAMEWORK=OFF
endif

$(eval $(cmake-package))
