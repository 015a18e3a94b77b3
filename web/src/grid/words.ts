import { defineWords } from '../words/language.js';

export const words = defineWords({
  selectAll: ['Select all', '全选', '全選'],
  selected: ['Selected', '已选择', '已選取'],
  help: [
    'Arrows, Page Up, Page Down, Home and End move. Space selects, with Shift a range, Ctrl+A all. Enter opens. On the '
      + 'head, Enter sorts, Ctrl and an arrow moves the column, Shift and an arrow sizes it.',
    '方向键、Page Up、Page Down、Home、End 移动；空格选择，加 Shift 选择范围，Ctrl+A 全选；Enter 打开。'
      + '在表头上：Enter 排序，Ctrl 加方向键移动列，Shift 加方向键调整列宽。',
    '方向鍵、Page Up、Page Down、Home、End 移動；空白鍵選取，加 Shift 選取範圍，Ctrl+A 全選；Enter 開啟。'
      + '在表頭上：Enter 排序，Ctrl 加方向鍵移動欄，Shift 加方向鍵調整欄寬。',
  ],
  columns: ['Columns', '列', '欄位'],
  column: ['Column', '列', '欄位'],
  shown: ['Shown', '显示', '顯示'],
  pinned: ['Pinned', '固定', '固定'],
  width: ['Width', '宽度', '寬度'],
  place: ['Place', '位置', '位置'],
  earlier: ['Move {column} to the front', '前移“{column}”', '前移「{column}」'],
  later: ['Move {column} to the back', '后移“{column}”', '後移「{column}」'],
  showColumn: ['Show {column}', '显示“{column}”', '顯示「{column}」'],
  pinColumn: ['Pin {column}', '固定“{column}”', '固定「{column}」'],
  widthOf: ['Width of {column}', '“{column}”的宽度', '「{column}」的寬度'],
  reset: ['As at first', '恢复默认', '恢復預設'],
});
