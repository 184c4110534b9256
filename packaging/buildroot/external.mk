include $(sort $(wildcard $(BR2_EXTERNAL_TAVO_PATH)/package/*/*.mk))
