// The service's event codes that the page looks at.
export const codes = {
  created: 0x40002003,
  deleted: 0x40002004,
  renamed: 0x40002005,
  modified: 0x40002007,
  dead: 0x40002008,
  warm: 0x40002009,
  hot: 0x4000200a,
  slowFan: 0x4000200b,
  started: 0x40002101,
  stopped: 0x40002102,
  tested: 0x40002103,
  stopping: 0x40002201,
};

export const severityName = (severity) => ['information', 'warning'][severity] || 'error';
export const hexCode = (code) => '0x' + code.toString(16).padStart(8, '0');
