# Run by CPack before it packs: who builds may have any umask.
execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -type d -exec chmod 755 {} +
                COMMAND_ERROR_IS_FATAL ANY)
