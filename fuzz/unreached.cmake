# Sources that no target reaches and that would only be compiled. A target that comes to need one of them does not link.
set(unreached
    bytes_fetch chunked_transfer clock_posix clsHashing counter_store crash_reports
    crash_reports_posix download file_lock_posix folder_hold game_launch index_stage installed_game
    keep_awake_posix library_check md5_kernel md5_lanes mirror_round network_watch_posix patch_installation
    player_install player_install_posix processes_posix repair rights_offer run_flags run_mode shell_posix
    system_directory transfer_report trust trust_memory unattended_dialogs update_check verification)
list(JOIN unreached "|" unreached)
list(FILTER LAUNCHER_SOURCES EXCLUDE REGEX "/(${unreached})\\.cpp$")
